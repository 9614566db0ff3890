#include "kalimkit/editor/screen/TesselViewController.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "kalimkit/canvas/ToolType.h"
#include "tests/editor/screen/EditorScreen.h"

namespace kalim {
namespace {

using test::EditorScreen;
using test::Finger;
using test::isShown;

TEST(TesselViewController, ASelectionIsShownByThePenButtonAndThePickers) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const auto show = [&](std::int64_t type, const gfx::ColorRef& color, double width) {
        editor->currentSelectedToolsPropertyChangedColorLineWidth(type, color, width);
        return std::tuple{editor->penView()->pen(), editor->penView()->size(),
                          editor->penPopView()->selectIndex(), editor->sizePopView()->selectIndex(),
                          editor->colorPopView()->selectIndex()};
    };
    const auto blue = gfx::makeColor(*editor->colorViews()[2]->color());
    EXPECT_EQ(show(ToolType::Ellipse, blue, 28), std::tuple(5u, 4u, 1, 4, 2));
    EXPECT_EQ(show(ToolType::Text, blue, 12), std::tuple(1u, 2u, 3, 2, 2));
    EXPECT_EQ(show(ToolType::Rectangle, blue, 2), std::tuple(3u, 0u, 2, 0, 2));
    EXPECT_EQ(show(ToolType::Arrow, blue, 7), std::tuple(6u, 1u, 0, 1, 2));
    // Patches and strokes show the pen that is chosen.
    EXPECT_EQ(show(ToolType::Mosaic, blue, 7), std::tuple(6u, 1u, 0, 1, 2));
    EXPECT_EQ(show(ToolType::Freehand, blue, 7), std::tuple(6u, 1u, 0, 1, 2));
    EXPECT_EQ(show(ToolType::RoundedRectangle, nullptr, 18), std::tuple(6u, 1u, 0, 1, 0));
    // A pen that is in no picker, and a colour that is in none.
    EXPECT_EQ(show(ToolType::Line, gfx::makeColor(0, 1, 0), 24), std::tuple(4u, 3u, 0, 3, 0));
    EXPECT_EQ(editor->currentPen(), 6u);
    EXPECT_EQ(editor->currentColor()->hex(), "#F63434FF");
}

TEST(TesselViewController, TheButtonsFollowASelectionThatChangesWhileTheyMove) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const auto states = [&] {
        return std::tuple{editor->lockConfigView(), editor->isConfigViewWillOut(),
                          editor->isConfigViewOut()};
    };
    // A burst of changes is one animation, or none.
    editor->seletedToolsStateChanged(true);
    editor->seletedToolsStateChanged(false);
    EXPECT_EQ(states(), std::tuple(true, false, false));
    host.wait(0.05);
    EXPECT_EQ(states(), std::tuple(false, false, false));
    EXPECT_TRUE(editor->configViewEdit()->isHidden());
    editor->seletedToolsStateChanged(true);
    host.wait(0.1);
    const double half = editor->configViewEdit()->shownAlpha();
    EXPECT_TRUE(half > 0.2 && half < 0.8) << half;
    editor->seletedToolsStateChanged(false);
    host.wait(0.11);
    EXPECT_EQ(states(), std::tuple(false, false, true));
    EXPECT_EQ(editor->penView()->alpha(), 1);
    host.wait(0.2);
    EXPECT_EQ(states(), std::tuple(false, false, false));
    EXPECT_EQ(editor->configViewEdit()->alpha(), 0);
}

TEST(TesselViewController,
     TheEditAndDeleteButtonsFadeUnderTwoFingersAndKeepTheirPlaceForOneTapOnly) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const test::TwoFingers apart{.center = {195, 400}, .radius = 60};
    const auto fade = [&](const std::vector<std::shared_ptr<ui::View>>& faded) {
        for (const auto& view : faded)
            EXPECT_TRUE(isShown(*view));
        pinchRotate(host.window(), apart, {.center = {195, 400}, .radius = 120}, 4);
        host.wait(0.3);
        for (const auto& view : faded)
            EXPECT_EQ(view->alpha(), 0);
        host.window().fingersCancelled({});
        host.wait(1);
        for (const auto& view : faded)
            EXPECT_TRUE(isShown(*view));
    };
    fade({editor->penView()});
    host.drawAndSelect();
    fade({editor->configViewEdit(), editor->configViewDelete()});
    EXPECT_EQ(editor->penView()->alpha(), 0);
    editor->startAnimateIn();
    host.wait(1);
    EXPECT_EQ(editor->penView()->alpha(), 0);
    // A second tap on the way of the first does not deselect what is to be edited.
    host.tap(editor->configViewEdit());
    host.wait(0.1);
    Finger(host.window()).tap({245, 794});
    host.wait(1);
    EXPECT_TRUE(editor->showPanel() && editor->drawView()->hasSelectedTools());
}

}  // namespace
}  // namespace kalim
