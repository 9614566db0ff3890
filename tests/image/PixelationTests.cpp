#include "kalimkit/image/Pixelation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "kalimkit/image/MDrawImageUtil.h"
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

}  // namespace
}  // namespace kalim
