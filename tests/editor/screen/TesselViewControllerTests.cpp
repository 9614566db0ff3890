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

TEST(TesselViewController, AppearsInTheOrderOfItsSetUp) {
    EditorScreen host;
    host.window().setRootViewController(host.editor);
    EXPECT_FALSE(host.editor->penPopView());
    EXPECT_EQ(host.editor->penView()->alpha(), 0);
    host.wait(0);
    ASSERT_TRUE(host.editor->penPopView());
    EXPECT_EQ(host.editor->drawView()->lineWidth(), 7);
    EXPECT_EQ(host.editor->drawView()->color()->hex(), "#F63434FF");
    EXPECT_EQ(host.editor->currentPen(), 6u);
    EXPECT_EQ(host.editor->sizePopView()->selectIndex(), 1);
    EXPECT_EQ(host.editor->drawView()->frame(), gfx::Rect(0, 0, 390, 844));
    EXPECT_EQ(host.editor->drawView()->bgImgRect(), gfx::Rect(45, 222, 300, 400));
    host.wait(0.2);
    EXPECT_TRUE(host.logs.empty());
    EXPECT_FALSE(host.editor->penView()->isRinging());
    host.wait(0.2);
    EXPECT_EQ(host.logs.back(), "draw canUseRingAnimation 1");
    EXPECT_TRUE(host.editor->penView()->isRinging());
    EXPECT_TRUE(isShown(*host.editor->penView()));
    EXPECT_TRUE(host.editor->penView()->transform().isIdentity());
    host.window().setRootViewController(nullptr);
    EXPECT_EQ(host.logs.back(), "draw viewWillDisappear ");
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

TEST(TesselViewController, TheFirstTapOnThePenButtonEndsTheRingHintForGood) {
    EditorScreen host;
    host.present().use(host.editor->penView());
    EXPECT_EQ(host.environment().userDefault("canUseRingAnimation"), false);
    host.use(host.editor->confirmButton());
    EXPECT_FALSE(host.editor->penView()->isRinging());
    host.window().setRootViewController(nullptr);
    host.present();
    EXPECT_EQ(host.logs.back(), "draw canUseRingAnimation 0");
    EXPECT_FALSE(host.editor->penView()->isRinging());
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

TEST(TesselViewController, ClosingAsksOnlyWhenSomethingWasDrawn) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    host.use(editor->toolView()->closeButton());
    EXPECT_EQ(host.owner->closed, 1);
    host.draw();
    // The lower button keeps the drawing, and so does a tap beside the panel.
    for (const int choice : {0, -1}) {
        host.use(editor->toolView()->closeButton());
        ASSERT_TRUE(editor->actionSheet());
        EXPECT_EQ(editor->actionSheet()->buttonWithTag(0)->currentTitle(), "继续标注");
        EXPECT_EQ(editor->actionSheet()->buttonWithTag(1)->currentTitle(), "放弃修改");
        if (choice < 0) {
            Finger(host.window()).tap({195, 100});
        } else {
            host.tap(editor->actionSheet()->buttonWithTag(choice));
        }
        host.wait(1);
        EXPECT_FALSE(editor->actionSheet());
        EXPECT_EQ(host.owner->closed, 1);
        EXPECT_TRUE(editor->drawView()->hasDrawed());
    }
    host.use(editor->toolView()->closeButton());
    host.use(editor->actionSheet()->buttonWithTag(1));
    EXPECT_EQ(host.owner->closed, 2);
}

TEST(TesselViewController, ConfirmingHandsOverThePictureEachTime) {
    EditorScreen host({.scale = 2});
    const auto& editor = host.present().editor;
    host.use(editor->toolView()->confirmButton());
    editor->setExportsAtPictureScale(true);
    host.use(editor->toolView()->confirmButton());
    ASSERT_EQ(host.owner->images.size(), 2u);
    EXPECT_EQ(host.owner->images[0]->pixelSize().width, 600);
    EXPECT_EQ(host.owner->images[1]->pixelSize().width, 300);
    EXPECT_EQ(editor->window(), &host.window());
}

TEST(TesselViewController, TheBarFollowsTheCanvas) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const auto& bar = editor->toolView();
    host.draw();
    EXPECT_TRUE(bar->undoButton()->isEnabled());
    host.use(bar->undoButton());
    EXPECT_TRUE(editor->drawView()->tools().empty());
    host.use(bar->redoButton());
    EXPECT_EQ(editor->drawView()->tools().size(), 1u);
    editor->drawView()->beginDrawingForTypeWithDrawType(ToolType::Text, 0);
    Finger(host.window()).tap({80, 500});
    host.wait(1);
    ASSERT_TRUE(editor->drawView()->curEdittingTextTool());
    EXPECT_TRUE(bar->undoButton()->isHidden());
    host.use(bar->doneButton());
    EXPECT_FALSE(editor->drawView()->curEdittingTextTool());
    EXPECT_FALSE(bar->undoButton()->isHidden());
    editor->setTopNavigationItemTitle(true, "返回");
    editor->setTopNavigationItemTitle(false, "完成了");
    EXPECT_EQ(bar->closeButton()->currentTitle(), "返回");
    EXPECT_EQ(bar->confirmButton()->currentTitle(), "完成了");
}

TEST(TesselViewController, FollowsTheSizeOfItsWindow) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    host.use(editor->penView());
    host.window().setSize({1280, 800});
    host.wait(1);
    EXPECT_EQ(editor->padding(), 36);
    EXPECT_NEAR(editor->offset(), 404 / 3.0, 1e-9);
    EXPECT_EQ(host.shown(editor->penPopView()), gfx::Rect(436, 584, 408, 38));
    EXPECT_NEAR(host.shown(editor->colorPopView()).minX(), 436 + 404 / 3.0, 1e-9);
    EXPECT_EQ(editor->drawView()->frame(), gfx::Rect(0, 0, 1280, 800));
    EXPECT_EQ(editor->maskView()->frame().size.width, 1280);
}

// ---- what lets go of whom

}  // namespace
}  // namespace kalim
