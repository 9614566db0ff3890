#include "kalimkit/shell/editor/EditorTables.h"

#include <gtest/gtest.h>

#include <string>

#include "kalimkit/shell/editor/EditorLayout.h"

namespace kalim {
namespace {

TEST(EditorTables, PensAndSizesAreDeliberatelyNotAllRecognisedBack) {
    // By pen: the tool type that it starts, and the pen that this type is shown as; -1 for none.
    constexpr int pens[][2] = {{5, -1}, {3, 1}, {4, -1},  {0, 3},   {6, 4},
                               {2, 5},  {7, 6}, {-1, -1}, {-1, -1}, {-1, -1}};
    for (unsigned pen = 0; pen < std::size(pens); ++pen) {
        const auto type = toolTypeForPen(pen);
        EXPECT_EQ(type ? *type : -1, pens[pen][0]) << pen;
        const auto back = type ? penForToolType(*type) : std::nullopt;
        EXPECT_EQ(back ? static_cast<int>(*back) : -1, pens[pen][1]) << pen;
    }
    EXPECT_FALSE(penForToolType(-1) || penForToolType(1));

    constexpr int widths[] = {2, 7, 12, 18, 28};
    for (unsigned size = 0; size < 5; ++size)
        EXPECT_EQ(lineWidthForSize(size), widths[size]);
    EXPECT_FALSE(lineWidthForSize(5));
    EXPECT_EQ(sizeForLineWidth(28), 4u);
    EXPECT_EQ(sizeForLineWidth(24), 3u);
    EXPECT_FALSE(sizeForLineWidth(18) || sizeForLineWidth(7.001) || sizeForLineWidth(0));
}

TEST(EditorLayout, TallPhonesKeepRoomAtTheirEdges) {
    const EditorLayout places = editorLayout({.view = {390, 844},
                                              .screenHeight = 844,
                                              .isTallPhone = true,
                                              .panelShift = 100,
                                              .configShift = 50});
    EXPECT_EQ(places.toolView, gfx::Rect(0, 0, 390, 88));
    EXPECT_EQ(places.penView, gfx::Rect(170, 758, 50, 50));
    EXPECT_EQ(places.confirmButton, gfx::Rect(165, 753, 60, 60));
    EXPECT_EQ(places.deleteButton, gfx::Rect(120, 758, 50, 50));
    EXPECT_EQ(places.panelView.maxY(), 853);
    EXPECT_EQ(places.maskView.maxY(), 844);
    EXPECT_EQ(places.nibView, gfx::Rect(176, 786, 38, 38));
}

TEST(EditorLayout, PickersShareTheEndsOfThePenPicker) {
    struct Case {
        double width, padding, offset, penLeft;
    };
    // The last two are wider than a panel becomes.
    for (const Case& c : {Case{326, 14, 250 / 3.0, 14}, Case{480, 36, 404 / 3.0, 36},
                          Case{844, 36, 404 / 3.0, 218}, Case{1280, 36, 404 / 3.0, 436}}) {
        const PickerSpacing spacing = pickerSpacing(c.width);
        EXPECT_NEAR(spacing.padding, c.padding, 1e-9) << c.width;
        EXPECT_NEAR(spacing.offset, c.offset, 1e-9) << c.width;
        EditorMeasures measures{.view = {c.width, 390}, .screenHeight = 390};
        measures.pickerInset = spacing.offset;
        measures.penPickerWidth = 228 + 5 * spacing.padding;
        measures.colorPickerWidth = measures.sizePickerWidth = 38;
        EditorLayout places = editorLayout(measures);
        EXPECT_NEAR(places.penPicker.minX(), c.penLeft, 1e-9) << c.width;
        EXPECT_NEAR(places.colorPicker.minX(), c.penLeft + c.offset, 1e-9) << c.width;
        EXPECT_NEAR(places.sizePicker.maxX(), c.width - c.penLeft - c.offset, 1e-9) << c.width;
        EXPECT_EQ(places.colorPicker.maxY(), places.panelView.size.height - 30);
        EXPECT_EQ(places.sizePicker.minY(), places.colorPicker.minY());
        EXPECT_EQ(places.penPicker.maxY(), places.colorPicker.minY() - 30);
        // Unfolded, the colours and the one size dot stand where the pens do.
        measures.pickerInset = 0;
        measures.colorPickerWidth = 190 + 4 * spacing.padding;
        places = editorLayout(measures);
        EXPECT_NEAR(places.sizePicker.minX() - places.colorPicker.maxX(), c.padding, 1e-9);
    }
}

}  // namespace
}  // namespace kalim
