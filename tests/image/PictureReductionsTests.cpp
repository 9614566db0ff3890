#include "kalimkit/image/PictureReductions.h"

#include <gtest/gtest.h>

#include "tests/support/TestHost.h"

namespace kalim {
namespace {

using enum PictureReductions::Making;

TEST(PictureReductions, AnswerTheSmallestCopyThatHasThePixelsAndWaitForWhatTakesTime) {
    test::TestHost host;
    PictureReductions reductions;
    EXPECT_EQ(reductions.atLeast(1, Any), nullptr);
    gfx::Bitmap bitmap(2401, 1801);
    for (int y = 0; y < 1801; ++y) {
        for (int x = 0; x < 2401; ++x)
            bitmap.setColorAt(x, y, (x + y) % 2 ? gfx::Color{1, 1, 1, 1} : gfx::Color{0, 0, 0, 1});
    }
    const gfx::ImageRef picture =
        host.environment().device().makeImage(std::move(bitmap), 1, gfx::ImageOrientation::Up);
    reductions.take(picture);
    EXPECT_EQ(reductions.atLeast(9000, Cheap), picture);
    EXPECT_EQ(reductions.atLeast(1201, Cheap), picture);
    EXPECT_EQ(reductions.atLeast(1200, Cheap), nullptr);
    const gfx::ImageRef half = reductions.atLeast(1200, Any);
    EXPECT_EQ(half->pixelSize(), (gfx::PixelSize{1200, 900}));
    for (const int x : {0, 600, 1199})
        EXPECT_NEAR(half->pixels()->colorAt(x, 450).red, 0.5, 0.01) << x;
    EXPECT_EQ(reductions.atLeast(700, Cheap), half);
    // From the half, which is small enough.
    EXPECT_EQ(reductions.atLeast(300, Cheap)->pixelSize(), (gfx::PixelSize{300, 225}));
    EXPECT_EQ(reductions.atLeast(1, Cheap)->pixelSize(), (gfx::PixelSize{1, 1}));
    reductions.release();
    EXPECT_EQ(reductions.atLeast(700, Cheap), nullptr);
}

}  // namespace
}  // namespace kalim
