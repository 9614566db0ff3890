#include "kalimkit/image/MosaicBlocks.h"

#include <gtest/gtest.h>

#include "kalimkit/image/MDrawImageUtil.h"
#include "tests/image/CoordinatePictures.h"

namespace kalim {
namespace {

// The rectangle filled with the pattern on a surface of that size in points.
gfx::BitmapRef filled(test::TestHost& host, const gfx::Pattern& pattern, gfx::Size size,
                      double scale, const gfx::Rect& rect) {
    const auto surface = host.environment().device().makeSurface(size, scale, false);
    surface->context().setFillPattern(pattern);
    surface->context().fillRect(rect);
    return surface->makeImage()->pixels();
}

TEST(MosaicBlocks, ShowThePixelatedPictureByteForByte) {
    test::TestHost host;
    std::vector<gfx::PixelSize> sizes{{1000, 1}, {1, 1000}, {4003, 2999}};
    for (int width = 1; width <= 45; width += 2) {
        for (int height = 1; height <= 45; height += 4)
            sizes.push_back({width, height});
    }
    for (const int side : {19, 20, 21, 39, 40, 41, 45})
        sizes.push_back({side, 60 - side});
    for (const gfx::PixelSize size : sizes) {
        const gfx::Rect whole(0, 0, size.width, size.height);
        for (const double scale : {1.0, 2.0}) {
            if (scale > 1 && size.width > 1000) continue;
            const auto picture = test::coordinatePicture(host, size.width, size.height, scale);
            const MosaicBlocks blocks(host.environment().device(), *picture->pixels(), 20);
            ASSERT_EQ(*filled(host, blocks.patternOver(whole), whole.size, scale, whole),
                      *MDrawImageUtil::mosiacImageMosaicLevel(picture, 20)->pixels())
                << size.width << " x " << size.height << " at scale " << scale;
        }
    }
}

TEST(MosaicBlocks, GoOnBeyondThePictureWithTheOutermostColours) {
    test::TestHost host;
    // Blocks of 2 shown 10 points wide; 3 columns of blocks, the last half as wide.
    const gfx::Bitmap raster = test::coordinates(5, 4);
    const MosaicBlocks blocks(host.environment().device(), raster, 2);
    const auto pixels =
        filled(host, blocks.patternOver({10, 10, 25, 20}), {45, 40}, 1, {0, 0, 45, 40});
    const auto at = [&](int x, int y) { return pixels->colorAt(x, y); };
    EXPECT_EQ(at(9, 12), at(10, 12));
    EXPECT_EQ(at(12, 9), at(12, 10));
    EXPECT_EQ(at(35, 12), at(34, 12));
    EXPECT_EQ(at(44, 12), at(34, 12));
    EXPECT_EQ(at(12, 30), at(12, 29));
    EXPECT_NE(at(10, 12), at(34, 12));
    EXPECT_NE(at(19, 12), at(20, 12));
    EXPECT_NE(at(12, 19), at(12, 20));
}

TEST(MosaicBlocks, NoneOfAnEmptyRaster) {
    test::TestHost host;
    gfx::Device& device = host.environment().device();
    EXPECT_TRUE(MosaicBlocks().isEmpty());
    EXPECT_TRUE(MosaicBlocks(device, {}, 20).isEmpty());
    EXPECT_TRUE(MosaicBlocks(device, test::coordinates(3, 3), 0).isEmpty());
    EXPECT_FALSE(MosaicBlocks().patternOver({0, 0, 5, 5}).image);
}

}  // namespace
}  // namespace kalim
