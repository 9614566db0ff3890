#include "kalimkit/editor/screen/TesselViewController.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/canvas/ToolType.h"
#include "tests/editor/screen/EditorScreen.h"

namespace kalim {
namespace {

using test::EditorScreen;
using test::Finger;
using test::isShown;

TEST(TesselViewController, ThePanelOpensAndClosesInTime) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    EXPECT_TRUE(editor->panelView()->isHidden() && editor->maskView()->isHidden());
    host.tap(editor->penView());
    EXPECT_TRUE(editor->isAnimation());
    EXPECT_EQ(editor->panelView()->shownAlpha(), 0);
    EXPECT_EQ(editor->panelView()->shownTransform().a, 0.5);
    // It takes no second tap on its way.
    host.wait(0.1);
    host.tap(editor->penView());
    EXPECT_FALSE(editor->showPanel());
    host.wait(0.101);
    EXPECT_TRUE(editor->showPanel());
    EXPECT_FALSE(editor->isAnimation());
    host.wait(0.2);
    EXPECT_TRUE(isShown(*editor->panelView()) && isShown(*editor->maskView()));
    EXPECT_TRUE(editor->panelView()->transform().isIdentity());
    EXPECT_EQ(host.shown(editor->panelView()).maxY(), 764);

    host.tap(editor->confirmButton());
    EXPECT_TRUE(editor->isAnimation() && editor->showPanel());
    host.wait(0.21);
    EXPECT_FALSE(editor->isAnimation() || editor->showPanel());
    EXPECT_TRUE(editor->panelView()->isHidden() && editor->maskView()->isHidden());
    host.use(editor->penView());
    EXPECT_TRUE(editor->showPanel());
    // Its pickers leave it open; its background, the mask and the canvas do not, and the canvas
    // draws as well.
    host.use(editor->penViews()[0]);
    host.use(editor->colorViews()[0]);
    EXPECT_TRUE(editor->showPanel());
    for (const double y : {host.shown(editor->panelView()).minY() + 10, 800.0}) {
        Finger(host.window()).tap({20, y});
        host.wait(1);
        EXPECT_FALSE(editor->showPanel());
        host.use(editor->penView());
    }
    host.draw();
    EXPECT_FALSE(editor->showPanel());
    EXPECT_EQ(editor->drawView()->tools().size(), 1u);
}

TEST(TesselViewController, OneOfTheColourAndSizePickersIsOpenAtATime) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const auto lefts = [&] {
        return std::pair{host.shown(editor->colorPopView()).minX(),
                         host.shown(editor->sizePopView()).maxX()};
    };
    host.use(editor->penView());
    EXPECT_TRUE(editor->colorPopView()->isFold() && editor->sizePopView()->isFold());
    const double left = host.shown(editor->penPopView()).minX();
    const double offset = (390 - 76) / 3.0;
    EXPECT_NEAR(lefts().first, left + offset, 1e-9);
    EXPECT_NEAR(lefts().second, 390 - left - offset, 1e-9);
    host.tap(editor->colorViews()[0]);
    host.wait(0.15);
    const double between = editor->colorPopView()->shownRectInWindow().minX();
    EXPECT_GT(between, left + 10);
    EXPECT_LT(between, left + offset - 10);
    host.wait(1);
    EXPECT_FALSE(editor->colorPopView()->isFold());
    EXPECT_NEAR(lefts().first, left, 1e-9);
    EXPECT_NEAR(lefts().second, 390 - left, 1e-9);
    host.use(editor->sizeViews()[1]);
    EXPECT_TRUE(editor->colorPopView()->isFold());
    EXPECT_FALSE(editor->sizePopView()->isFold());
    EXPECT_EQ(editor->currentType(), 0u);
    // What is chosen folds the row again, and so does any button of the bar.
    host.use(editor->sizeViews()[4]);
    EXPECT_EQ(editor->drawView()->lineWidth(), 28);
    EXPECT_EQ(editor->currentSize(), 4u);
    EXPECT_TRUE(editor->sizePopView()->isFold());
    host.use(editor->colorViews()[0]);
    host.use(editor->colorViews()[2]);
    EXPECT_EQ(editor->drawView()->color(), editor->colorViews()[2]->color());
    EXPECT_EQ(editor->penView()->color(), editor->currentColor());
    host.use(editor->colorViews()[2]);
    editor->toolView()->handleUndo();
    host.wait(1);
    EXPECT_TRUE(editor->colorPopView()->isFold());
    EXPECT_NEAR(lefts().first, left + offset, 1e-9);
}

TEST(TesselViewController, PensChooseWhatIsDrawnExceptTheCropPen) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const std::int64_t types[] = {ToolType::Arrow, ToolType::Ellipse, ToolType::Rectangle,
                                  ToolType::Text, ToolType::Mosaic};
    const unsigned pens[] = {6, 5, 3, 1, 0};
    host.use(editor->penView());
    for (std::size_t index = 0; index < std::size(pens); ++index) {
        host.use(editor->penViews()[index]);
        EXPECT_EQ(editor->currentPen(), pens[index]);
        EXPECT_EQ(editor->penView()->pen(), pens[index]);
        EXPECT_EQ(editor->drawView()->drawToolClass(), getClassForToolType(types[index]));
    }
    host.use(editor->penViews()[5]);
    EXPECT_EQ(editor->currentPen(), 0u);
    EXPECT_EQ(editor->currentType(), 2u);
}

TEST(TesselViewController, TakesShapesAndSizesThatNoPickerOffers) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    const std::int64_t types[] = {ToolType::Rectangle, ToolType::Ellipse, ToolType::Line};
    for (unsigned shape = 0; shape < 4; ++shape) {
        editor->clickDotWithConfig(TesselDot::initWithShape(shape)->config());
        EXPECT_EQ(editor->currentShape(), shape);
        EXPECT_EQ(editor->drawView()->drawToolClass(),
                  getClassForToolType(types[std::min(shape, 2u)]));
    }
    EXPECT_EQ(editor->currentType(), 3u);
    EXPECT_EQ(editor->currentPen(), 6u);
    editor->clickDotWithConfig(TesselDot::initWithSize(5)->config());
    EXPECT_EQ(editor->currentSize(), 5u);
    EXPECT_EQ(editor->drawView()->lineWidth(), 7);
}

}  // namespace
}  // namespace kalim
