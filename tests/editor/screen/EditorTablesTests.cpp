#include "kalimkit/editor/screen/EditorTables.h"

#include <gtest/gtest.h>

namespace kalim {
namespace {

TEST(EditorTables, PensAndSizesAreDeliberatelyNotAllRecognisedBack) {
    // By pen: the tool type that it starts, and the pen that this type is shown as; -1 for none.
    constexpr int pens[][2] = {{5, -1}, {3, 1}, {4, -1},  {0, 3},  {6, 4},
                               {2, 5},  {7, 6}, {-1, -1}, {-1, -1}};
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

}  // namespace
}  // namespace kalim
