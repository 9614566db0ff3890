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

TEST(TesselViewController, ThePanelStaysForItsPickersAndGoesForWhatIsBesideThem) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    host.tap(editor->penView());
    // It takes no second tap on its way.
    host.wait(0.1);
    host.use(editor->penView());
    host.use(editor->penViews()[0]);
    host.use(editor->colorViews()[0]);
    EXPECT_TRUE(editor->showPanel());
    for (const double y : {host.shown(editor->panelView()).minY() + 10, 800.0}) {
        Finger(host.window()).tap({20, y});
        host.wait(1);
        EXPECT_FALSE(editor->showPanel()) << y;
        host.use(editor->penView());
    }
    host.draw();
    EXPECT_FALSE(editor->showPanel());
    EXPECT_EQ(editor->drawView()->tools().size(), 1u);
}

TEST(TesselViewController, PickersSlideAndFoldAgainWithAnyButtonOfTheBar) {
    EditorScreen host;
    const auto& editor = host.present().editor;
    host.use(editor->penView());
    const double left = host.shown(editor->penPopView()).minX();
    const double folded = host.shown(editor->colorPopView()).minX();
    host.tap(editor->colorViews()[0]);
    host.wait(0.15);
    EXPECT_NEAR(editor->colorPopView()->shownRectInWindow().minX(), (left + folded) / 2, 10);
    host.wait(1);
    editor->toolView()->handleUndo();
    host.wait(1);
    EXPECT_TRUE(editor->colorPopView()->isFold());
    EXPECT_NEAR(host.shown(editor->colorPopView()).minX(), folded, 1e-9);
}

TEST(TesselViewController, DotsOfSizesChooseHowTheMosaicHides) {
    EditorScreen host;
    const auto& editor = host.editor;
    editor->setOffersHidingStyles(true);
    host.present();
    host.use(editor->penView());
    const auto mosaic = editor->penViews()[4];
    host.use(mosaic);
    EXPECT_EQ(editor->drawView()->drawType(), 10u);
    EXPECT_EQ(editor->sizePopView()->offered(), 4);
    const char* const names[] = {"密封马赛克", "纯色遮盖", "普通马赛克", "模糊（仅装饰）"};
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_EQ(editor->sizeViews()[i]->accessibilityLabel(), names[i]);
    // The first tap unfolds the row.
    host.use(editor->sizeViews()[0]);
    host.use(editor->sizeViews()[1]);
    EXPECT_EQ(editor->drawView()->drawType(), 11u);
    EXPECT_EQ(editor->penView()->accessibilityValue(), "马赛克 红色 纯色遮盖");
    host.draw();
    EXPECT_EQ(editor->drawView()->tools().back()->drawType(), 11u);
    // Other pens have their sizes, and the style is there again with the pen.
    host.use(editor->penView());
    host.use(editor->penViews()[0]);
    EXPECT_EQ(editor->drawView()->drawType(), 0u);
    EXPECT_EQ(editor->sizePopView()->offered(), 5);
    EXPECT_EQ(editor->sizePopView()->selectIndex(), 1);
    EXPECT_EQ(editor->currentSize(), 1u);
    host.use(mosaic);
    EXPECT_EQ(editor->drawView()->drawType(), 11u);
    EXPECT_EQ(editor->sizePopView()->selectIndex(), 1);
    editor->setOffersHidingStyles(false);
    EXPECT_EQ(editor->drawView()->drawType(), 0u);
    EXPECT_EQ(editor->sizePopView()->offered(), 5);
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
