#include "kalimkit/image/GaussianBlur.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace kalim {
namespace {

// One row of zeros and ones seen through a Gaussian, from `extent` before it to as far behind it.
std::vector<double> trueGaussian(const std::vector<int>& row, double sigma, int extent) {
    const int count = static_cast<int>(row.size());
    std::vector<double> result;
    double sum = 0;
    for (int i = -10000; i <= 10000; ++i)
        sum += std::exp(-i * i / (2 * sigma * sigma));
    for (int x = -extent; x < count + extent; ++x) {
        result.push_back(0);
        for (int i = 0; i < count; ++i) {
            if (row[i]) result.back() += std::exp(-(i - x) * (i - x) / (2 * sigma * sigma)) / sum;
        }
    }
    return result;
}

// Of a raster that is white where both its column and its row are 1.
double worstDifference(const std::vector<int>& columns, const std::vector<int>& rows,
                       double sigma) {
    const auto width = static_cast<int>(columns.size());
    gfx::Bitmap raster(width, static_cast<int>(rows.size()));
    for (std::size_t i = 0; i < raster.byteCount(); ++i)
        raster.data()[i] = columns[i / 4 % columns.size()] && rows[i / raster.stride()] ? 255 : 0;
    const gfx::Bitmap blurred = gaussianBlurred(raster, sigma);
    const std::vector<double> across = trueGaussian(columns, sigma, (blurred.width() - width) / 2);
    const std::vector<double> down = trueGaussian(rows, sigma, (blurred.width() - width) / 2);
    double worst = 0;
    for (std::size_t i = 0; i < blurred.byteCount(); ++i) {
        const double expected = 255 * across[i / 4 % across.size()] * down[i / blurred.stride()];
        worst = std::max(worst, std::abs(expected - blurred.data()[i]));
    }
    return worst;
}

TEST(GaussianBlur, AnImpulseAndEdgesComeWithinTwoLevelsOfTheTrueGaussian) {
    for (const double radius : {0.5, 1.0, 2.5, 5.0, 7.0, 13.9, 14.0, 30.0, 100.0}) {
        std::vector<int> impulse(static_cast<std::size_t>(radius) + 13);
        impulse[impulse.size() / 2] = 1;
        std::vector<int> edge(static_cast<std::size_t>(radius) * 2 + 13);
        std::fill_n(edge.begin(), edge.size() / 2 + 3, 1);
        EXPECT_LE(worstDifference(impulse, impulse, radius), 2) << radius;
        EXPECT_LE(worstDifference(edge, impulse, radius), 2) << radius;
        EXPECT_LE(worstDifference(edge, edge, radius), 2) << radius;
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
