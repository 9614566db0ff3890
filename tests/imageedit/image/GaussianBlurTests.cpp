#include "kalimkit/imageedit/image/GaussianBlur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace kalim {
namespace {

// Blue of the blurred raster by the definition, followed to six standard deviations.
std::vector<double> trueGaussian(const gfx::Bitmap& raster, double sigma, int extent) {
    const auto weight = [&](int offset) {
        return std::exp(-offset * offset / (2 * sigma * sigma)) /
               (sigma * std::sqrt(2 * std::acos(-1.0)));
    };
    const int reach = static_cast<int>(std::ceil(6 * sigma));
    const int width = raster.width() + 2 * extent;
    const int height = raster.height() + 2 * extent;
    std::vector<double> across(static_cast<std::size_t>(width * raster.height()));
    std::vector<double> result(static_cast<std::size_t>(width * height));
    for (int y = 0; y < raster.height(); ++y) {
        for (int x = 0; x < width; ++x) {
            const int at = x - extent;
            for (int i = std::max(0, at - reach); i <= std::min(raster.width() - 1, at + reach);
                 ++i)
                across[static_cast<std::size_t>(y * width + x)] +=
                    weight(i - at) * raster.row(y)[i * 4];
        }
    }
    for (int y = 0; y < height; ++y) {
        const int at = y - extent;
        for (int i = std::max(0, at - reach); i <= std::min(raster.height() - 1, at + reach); ++i) {
            for (int x = 0; x < width; ++x)
                result[static_cast<std::size_t>(y * width + x)] +=
                    weight(i - at) * across[static_cast<std::size_t>(i * width + x)];
        }
    }
    return result;
}

double worstDifference(const gfx::Bitmap& raster, double sigma) {
    const gfx::Bitmap blurred = gaussianBlurred(raster, sigma);
    const int extent = (blurred.width() - raster.width()) / 2;
    const std::vector<double> expected = trueGaussian(raster, sigma, extent);
    double worst = 0;
    for (std::size_t i = 0; i < expected.size(); ++i)
        worst = std::max(worst, std::abs(expected[i] - blurred.data()[i * 4]));
    return worst;
}

TEST(GaussianBlur, AnImpulseAndEdgesComeWithinTwoLevelsOfTheTrueGaussian) {
    for (const double radius : {1.0, 2.5, 5.0, 7.0, 13.9, 14.0, 30.0, 100.0}) {
        const int width = static_cast<int>(radius * 2) + 13;
        const int height = static_cast<int>(radius) + 9;
        gfx::Bitmap impulse(width, height);
        std::fill_n(impulse.row(height / 2) + width / 2 * 4, 4, std::uint8_t{255});
        EXPECT_LE(worstDifference(impulse, radius), 2) << radius;
        gfx::Bitmap half(width, height);
        for (int y = 0; y < height; ++y)
            std::fill_n(half.row(y), width / 2 * 4, std::uint8_t{255});
        EXPECT_LE(worstDifference(half, radius), 2) << radius;
    }
}

TEST(GaussianBlur, ReachesThreeRadiiBeyondTheRasterAndIsStillThere) {
    gfx::Bitmap white(40, 30);
    std::fill_n(white.data(), white.byteCount(), std::uint8_t{255});
    const gfx::Bitmap blurred = gaussianBlurred(white, 2.5);
    ASSERT_EQ(blurred.size(), (gfx::PixelSize{56, 46}));
    EXPECT_EQ(blurred.row(23)[3], 0);
    // Far from the edges nothing changes, and the edge itself is half there.
    EXPECT_EQ(blurred.row(23)[4 * 28], 255);
    EXPECT_NEAR((blurred.row(23)[4 * 7] + blurred.row(23)[4 * 8]) / 2.0, 127.5, 1);
}

TEST(GaussianBlur, ColoursStayBelowTheirAlphaAndChannelsApart) {
    gfx::Bitmap raster(64, 48);
    for (int y = 0; y < 48; ++y) {
        for (int x = 0; x < 64; ++x)
            raster.setColorAt(x, y, {x % 5 / 4.0, 1, 0, (x * 7 + y * 3) % 11 / 10.0});
    }
    for (const double radius : {1.0, 9.0}) {
        const gfx::Bitmap blurred = gaussianBlurred(raster, radius);
        for (std::size_t i = 0; i < blurred.byteCount(); i += 4) {
            const std::uint8_t* const pixel = blurred.data() + i;
            ASSERT_EQ(pixel[0], 0);
            ASSERT_EQ(pixel[1], pixel[3]);
            ASSERT_LE(pixel[2], pixel[3]);
        }
    }
}

TEST(GaussianBlur, ARadiusOfNothingChangesNothingAndAnImpossibleOneYieldsNothing) {
    gfx::Bitmap raster(3, 2);
    raster.setColorAt(1, 1, {1, 0.5, 0, 1});
    EXPECT_EQ(gaussianBlurred(raster, 0), raster);
    EXPECT_EQ(gaussianBlurred(raster, 1e-200).row(2)[2 * 4 + 2], 255);
    for (const double radius : {-1.0, std::nan(""), std::numeric_limits<double>::infinity(), 5461.0,
                                1e6, std::numeric_limits<double>::max()}) {
        EXPECT_TRUE(gaussianBlurred(raster, radius).isEmpty()) << radius;
    }
    EXPECT_TRUE(gaussianBlurred({}, 5).isEmpty());
}

}  // namespace
}  // namespace kalim
