#include "kalimkit/editor/screen/EditorLayout.h"

#include <gtest/gtest.h>

namespace kalim {
namespace {

TEST(EditorLayout, TallPhonesKeepRoomAtTheirEdges) {
    const EditorLayout places = editorLayout({.view = {390, 844},
                                              .screenHeight = 844,
                                              .safeArea = {44, 0, 34, 0},
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
        EditorMeasures measures{.view = {c.width, 390}, .screenHeight = 390, .safeArea = {}};
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
