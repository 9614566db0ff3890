#include "kalimkit/editor/screen/TesselViewController.h"

#include <gtest/gtest.h>

#include "kalimkit/canvas/ToolType.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/theme/HexColor.h"
#include "tests/editor/screen/EditorScreen.h"

namespace kalim {
namespace {

using test::EditorScreen;
using test::Finger;
using test::isShown;

TEST(TesselViewController, RingsOnceItHasAppeared) {
    EditorScreen host;
    host.window().setRootViewController(host.editor);
    host.wait(0.2);
    EXPECT_EQ(host.editor->nibView()->frame(), gfx::Rect(176, 786, 38, 38));
    EXPECT_TRUE(host.logs.empty());
    EXPECT_FALSE(host.editor->penView()->isRinging());
    host.wait(0.2);
    EXPECT_TRUE(host.editor->penView()->isRinging());
}

TEST(TesselViewController, TellsItsSurroundingsWhatItNeeds) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    EXPECT_TRUE(host.environment().hidesStatusBar());
    EXPECT_EQ(host.environment().statusBarStyle(), 1);
    EXPECT_EQ(editor->isToolbarPlaceBottom(), true);
    EXPECT_EQ(editor->toolbarHeight(), 0.0);
    EXPECT_EQ(editor->confirmButton()->tag(), 100001);
    host.draw();
    host.use(editor->toolView()->closeButton());
    ASSERT_TRUE(editor->actionSheet());
    EXPECT_EQ(editor->actionSheet()->tag(), 0x636C6174);

    host.logs.clear();
    // An editor without a callback comes and goes, and leaves the other's alone.
    TesselViewController::initWithSourceImageWithDelegate(nullptr, host.owner)->view();
    MDrawLogUtil::sharedInstance().logInfoMethodName("heard", "");
    EXPECT_EQ(std::exchange(host.logs, {}), std::vector<std::string>{"heard"});
    editor->setTopNavigationItemTitle(true, "返回");
    EXPECT_EQ(editor->toolView()->closeButton()->currentTitle(), "返回");
    editor->setLogTranferBlock({});
    host.window().setRootViewController(nullptr);
    EXPECT_TRUE(host.logs.empty());
    EXPECT_FALSE(host.environment().hidesStatusBar());
}

TEST(TesselViewController, WhiteAndYellowTextStandsOnBlack) {
    EditorScreen host;
    MDrawView& canvas = *host.present().editor->drawView();
    const auto text = MDrawText::initWithStartPoint({0, 0});
    text->setText("x");
    ASSERT_TRUE(canvas.addTool(text));
    for (const char* color : {"FFFFFF", "FFF700"}) {
        text->setColor(colorWithHexString(color));
        const auto backing = text->delegate()->drawTextAskForMaskColor(*text);
        ASSERT_TRUE(backing.has_value()) << color;
        EXPECT_EQ((*backing)->hex(), "#000000FF") << color;
    }
    text->setColor(colorWithHexString("F63434"));
    EXPECT_EQ(text->delegate()->drawTextAskForMaskColor(*text), std::nullopt);
}

TEST(TesselViewController, AfterTheFirstTapAnIdleEditorNeitherWakesNorRedraws) {
    EditorScreen host;
    host.present();
    // The hint on the pen button rings until then.
    EXPECT_TRUE(host.environment().runLoop().isBusy());
    const auto expectRest = [&host](const char* state) {
        host.window().display();
        host.window().takeDrawn();
        EXPECT_LT(host.environment().runLoop().nextDue(), 0) << state;
        host.wait(10);
        EXPECT_FALSE(host.window().needsDisplay()) << state;
        EXPECT_TRUE(host.window().takeDrawn().empty()) << state;
    };
    host.use(host.editor->penView());
    expectRest("open panel");
    host.use(host.editor->colorPopView());
    expectRest("unfolded colours");
    host.use(host.editor->confirmButton());
    expectRest("closed panel");
    host.drawAndSelect();
    expectRest("selected shape");
    host.editor->drawView()->selectNone();
    host.use(host.editor->toolView()->closeButton());
    expectRest("question before closing");
}

}  // namespace
}  // namespace kalim
