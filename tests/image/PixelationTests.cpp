#include "kalimkit/image/Pixelation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/image/MosaicBlocks.h"
#include "tests/image/CoordinatePictures.h"

namespace kalim {
namespace {

gfx::Bitmap noise(int width, int height) {
    gfx::Bitmap bitmap(width, height);
    std::uint32_t state = 12345;
    for (std::size_t i = 0; i < bitmap.byteCount(); ++i) {
        state = state * 1664525 + 1013904223;
        bitmap.data()[i] = static_cast<std::uint8_t>(state >> 24);
    }
    return bitmap;
}

// The definition, position by position: byte indexes run on past the right edge, and count while
// red has two more bytes in the raster.
gfx::Bitmap literalBlocks(const gfx::Bitmap& raster, int level) {
    const std::int64_t rowBytes = std::int64_t{raster.width()} * 4;
    const std::int64_t total = rowBytes * raster.height();
    gfx::Bitmap blocks((raster.width() + level - 1) / level, (raster.height() + level - 1) / level);
    for (int x = 0; x < raster.width(); x += level) {
        for (int y = 0; y < raster.height(); y += level) {
            double sums[3] = {};
            std::int64_t count = 0;
            for (int i = 0; i < level; ++i) {
                for (int j = 0; j < level; ++j) {
                    const std::int64_t pixel =
                        (std::int64_t{x} + i) * 4 + (std::int64_t{y} + j) * rowBytes;
                    if (pixel + 3 > total) continue;
                    for (int c = 0; c < 3; ++c)
                        sums[c] += raster.data()[pixel + c];
                    ++count;
                }
            }
            std::uint8_t* target = blocks.row(y / level) + (x / level) * 4;
            for (int c = 0; c < 3; ++c) {
                const auto divisor = static_cast<double>(static_cast<float>(count) * 255.0F);
                target[c] = static_cast<std::uint8_t>(std::lround(sums[c] / divisor * 255));
            }
            target[3] = 255;
        }
    }
    return blocks;
}

TEST(Pixelation, EqualsTheDefinitionOnEverySmallSizeAndSomeLarge) {
    for (int width = 1; width <= 23; ++width) {
        for (int height = 1; height <= 23; ++height) {
            const gfx::Bitmap raster = noise(width, height);
            for (const int level : {1, 2, 5, 20, 40}) {
                ASSERT_EQ(blockColors(raster, level), literalBlocks(raster, level))
                    << width << " x " << height << " by " << level;
            }
        }
    }
    const gfx::Bitmap large = noise(613, 1021);
    for (const int level : {20, 256, 300, 600, 2000}) {
        ASSERT_EQ(blockColors(large, level), literalBlocks(large, level)) << level;
    }
}

TEST(Pixelation, EveryPixelOfALargeSpreadHasTheColourOfItsBlock) {
    // More than 4 MB in rows that start anywhere, at a scale of a half more.
    constexpr gfx::PixelSize size{1031, 1043};
    const gfx::Bitmap blocks = noise(35, 35);
    gfx::Bitmap spread;
    spreadBlocks(blocks, 20, 1.5, size, spread);
    ASSERT_EQ(spread.size(), size);
    for (int y = 0; y < size.height; ++y) {
        for (int x = 0; x < size.width; ++x) {
            const std::uint8_t* block = blocks.row(y / 30) + x / 30 * 4;
            ASSERT_EQ(std::memcmp(spread.row(y) + x * 4, block, 4), 0) << x << "," << y;
        }
    }
}

TEST(Pixelation, NoBlocksWithoutALevelOrARaster) {
    EXPECT_TRUE(blockColors(noise(5, 5), 0).isEmpty());
    EXPECT_TRUE(blockColors(noise(5, 5), -3).isEmpty());
    EXPECT_TRUE(blockColors({}, 20).isEmpty());
    EXPECT_EQ(blockColors(noise(5, 5), INT32_MAX).size(), (gfx::PixelSize{1, 1}));
}

TEST(Pixelation, OnePixelOfTheRasterBecomesOnePointOfTheMosaic) {
    test::TestHost host({.scale = 1});
    for (const double scale : {1.0, 2.0, 1.5}) {
        const auto source =
            test::coordinatePicture(host, 50, 30, scale, gfx::ImageOrientation::Down);
        const auto mosaic = MDrawImageUtil::mosiacImageMosaicLevel(source, 20);
        EXPECT_EQ(mosaic->size(), (gfx::Size{50, 30}));
        EXPECT_EQ(mosaic->scale(), scale);
        EXPECT_EQ(mosaic->orientation(), gfx::ImageOrientation::Up);
        const auto pixels = mosaic->pixels();
        const gfx::Bitmap blocks = blockColors(*source->pixels(), 20);
        for (const gfx::PixelSize p :
             {gfx::PixelSize{0, 0}, {19, 19}, {20, 19}, {39, 20}, {40, 29}}) {
            const int x = static_cast<int>((p.width + 0.5) * scale);
            const int y = static_cast<int>((p.height + 0.5) * scale);
            EXPECT_EQ(pixels->colorAt(x, y), blocks.colorAt(p.width / 20, p.height / 20))
                << scale << ": " << p.width << "," << p.height;
        }
    }
    EXPECT_FALSE(MDrawImageUtil::mosiacImageMosaicLevel(nullptr, 20));
    EXPECT_FALSE(MDrawImageUtil::mosiacImageMosaicLevel(test::coordinatePicture(host, 5, 5), 0));
}

TEST(Pixelation, ThePlacedMosaicIsCentredInTheRectangle) {
    test::TestHost host({.scale = 1});
    const auto source = test::coordinatePicture(host, 40, 20);
    const auto mosaic = MDrawImageUtil::mosiacImageMosaicLevel(source, 20);
    const auto placed = MDrawImageUtil::mosiacImageFittoSizeSrcImgBoundsTransform(
        mosaic, source, {0, 0, 60, 40}, gfx::AffineTransform::translation(5, 0));
    ASSERT_EQ(placed->size(), (gfx::Size{60, 40}));
    // Centred at 10..50 x 10..30, then moved right by 5; black around it.
    EXPECT_EQ(placed->pixels()->colorAt(14, 20).hex(), "#000000FF");
    EXPECT_EQ(placed->pixels()->colorAt(15, 10), mosaic->pixels()->colorAt(0, 0));
    EXPECT_EQ(placed->pixels()->colorAt(54, 29), mosaic->pixels()->colorAt(39, 19));
    EXPECT_EQ(placed->pixels()->colorAt(20, 30).hex(), "#000000FF");
    const auto own = MDrawImageUtil::mosiacImageMosaicLevelBoundsTransform(
        source, 20, {0, 0, 60, 40}, gfx::AffineTransform::translation(-10, -10));
    ASSERT_EQ(own->size(), (gfx::Size{40, 20}));
    EXPECT_EQ(*own->pixels(), *mosaic->pixels());
    EXPECT_FALSE(
        MDrawImageUtil::mosiacImageFittoSizeSrcImgBoundsTransform(nullptr, source, {}, {}));
}

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
