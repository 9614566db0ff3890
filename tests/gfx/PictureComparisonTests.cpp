#include "tests/support/PictureComparison.h"

#include <gtest/gtest.h>

#include <cmath>

#include "kalimkit/gfx/Bitmap.h"

namespace kalim::test {
namespace {

// A picture with a little structure everywhere, `shift` levels brighter.
gfx::Bitmap picture(int width, int height, int shift = 0) {
    gfx::Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint8_t* pixel = bitmap.row(y) + 4 * static_cast<std::size_t>(x);
            for (const int level : {x % 200 + shift, y % 200 + shift, (x + y) % 200 + shift, 255})
                *pixel++ = static_cast<std::uint8_t>(level);
        }
    }
    return bitmap;
}

TEST(PictureComparison, FindsAMissingHandleInALargePicture) {
    const gfx::Bitmap without = picture(1170, 2532);
    gfx::Bitmap with = without;
    // A disc across the corner of four tiles.
    for (int i = 0; i < 256; ++i) {
        const int x = i % 16;
        const int y = i / 16;
        if (std::hypot(x - 7.5, y - 7.5) < 8) with.setColorAt(600 + x, 1992 + y, {1, 1, 1, 1});
    }
    const PictureComparison comparison = comparePictures(with, without);
    EXPECT_FALSE(comparison.matches());
    ASSERT_EQ(4U, comparison.tiles.size());
    EXPECT_EQ(592, comparison.tiles[0].x);
    EXPECT_EQ(1984, comparison.tiles[0].y);
    EXPECT_EQ(608, comparison.tiles[3].x);
    EXPECT_EQ(2000, comparison.tiles[3].y);
    EXPECT_NE(std::string::npos, comparison.message.find("4 tile(s) differ"));
    EXPECT_NE(std::string::npos, comparison.message.find("16x16 at (608,2000)"));
}

TEST(PictureComparison, ToleratesAFewLevelsButNotMoreAndRefusesOtherSizes) {
    EXPECT_TRUE(comparePictures(picture(40, 40), picture(40, 40, 6)).matches());
    EXPECT_EQ("", comparePictures(picture(40, 40), picture(40, 40, 6)).message);
    EXPECT_EQ(9U, comparePictures(picture(40, 40), picture(40, 40, 7)).tiles.size());
    const PictureComparison comparison = comparePictures(picture(4, 5), picture(5, 4));
    EXPECT_FALSE(comparison.matches());
    EXPECT_EQ("expected 4x5, got 5x4", comparison.message);
}

TEST(PictureComparison, CountsStrongPixelsInTheTileTheyAreIn) {
    // 2 % of a tile of 256 pixels are 5.12.
    const gfx::Bitmap plain(32, 20);
    gfx::Bitmap dotted = plain;
    for (int i = 0; i < 5; ++i)
        dotted.row(3)[4 * i] = 49;
    EXPECT_TRUE(comparePictures(plain, dotted).matches());
    dotted.row(3)[4 * 5] = 48;
    EXPECT_TRUE(comparePictures(plain, dotted).matches());
    dotted.row(3)[4 * 5] = 49;
    EXPECT_EQ(1U, comparePictures(plain, dotted).tiles.size());

    // The tiles at the bottom are cut to 16x4: two pixels are enough.
    gfx::Bitmap edge = plain;
    edge.row(19)[4 * 31 + 3] = 200;
    edge.row(19)[4 * 30 + 3] = 200;
    const PictureComparison comparison = comparePictures(plain, edge);
    ASSERT_EQ(1U, comparison.tiles.size());
    EXPECT_EQ(4, comparison.tiles[0].height);
    EXPECT_DOUBLE_EQ(2.0 / 64, comparison.tiles[0].strongShare);
}

}  // namespace
}  // namespace kalim::test
