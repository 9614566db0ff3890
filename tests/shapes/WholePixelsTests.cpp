#include "kalimkit/shapes/WholePixels.h"

#include <gtest/gtest.h>

#include <numbers>

namespace kalim {
namespace {

using gfx::AffineTransform;

void expectNear(const gfx::Rect& actual, const gfx::Rect& expected) {
    EXPECT_NEAR(actual.minX(), expected.minX(), 1e-9);
    EXPECT_NEAR(actual.minY(), expected.minY(), 1e-9);
    EXPECT_NEAR(actual.maxX(), expected.maxX(), 1e-9);
    EXPECT_NEAR(actual.maxY(), expected.maxY(), 1e-9);
}

TEST(WholePixels, RoundsOutwardsInDevicePixels) {
    expectNear(wholePixels({10.2, 20.6, 5, 5}, {}), {10, 20, 6, 6});
    // Pixels of half a point: 20.4 to 30.4 and 41.2 to 51.2.
    expectNear(wholePixels({10.2, 20.6, 5, 5}, AffineTransform::scaling(2, 2)),
               {10, 20.5, 5.5, 5.5});
    // Shifted by a quarter pixel: 10.25 to 15.25.
    expectNear(wholePixels({10, 10, 5, 5}, AffineTransform::translation(0.25, 0)),
               {9.75, 10, 6, 5});
    // A quarter turn: x in user space runs along y in pixels.
    expectNear(wholePixels({10.2, 20.5, 5, 1}, AffineTransform::rotation(std::numbers::pi / 2)),
               {10, 20, 6, 2});
}

TEST(WholePixels, ForgivesRoundingErrorsButHidesSlivers) {
    const AffineTransform third = AffineTransform::scaling(3, 3);
    expectNear(wholePixels({1.0 / 3, 0.1 + 0.2 - 0.3, 1 + 1e-9, 1}, third), {1.0 / 3, 0, 1, 1});
    expectNear(wholePixels({5, 5, 1e-5, 3}, {}), {5, 5, 1, 3});
}

TEST(WholePixels, GrowsByAPixelOnEachSideUnderATurn) {
    const AffineTransform turned =
        AffineTransform::rotation(0.3).concat(AffineTransform::scaling(2, 2));
    expectNear(wholePixels({10, 10, 6, 4}, turned), {9.5, 9.5, 7, 5});
    const gfx::Rect rect(1, 2, 3, 4);
    EXPECT_EQ(wholePixels(rect, AffineTransform::scaling(0, 1)), rect);
}

}  // namespace
}  // namespace kalim
