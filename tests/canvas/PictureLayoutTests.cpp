#include "kalimkit/canvas/PictureLayout.h"

#include <gtest/gtest.h>

#include <numbers>

namespace kalim {
namespace {

TEST(PictureLayout, TheCanvasIsScaledAndTurnedAboutItsCentre) {
    const auto transform = canvasToView({100, 200}, {110, 195}, 2, std::numbers::pi / 2);
    // The centre only moves.
    EXPECT_EQ(transform.apply(gfx::Point{100, 200}), (gfx::Point{110, 195}));
    const gfx::Point right = transform.apply(gfx::Point{110, 200});
    EXPECT_NEAR(right.x, 110, 1e-9);
    EXPECT_NEAR(right.y, 215, 1e-9);
}

TEST(PictureLayout, ARasterShownPixelForPixelIsMovedOntoThePixels) {
    const auto shifted = gfx::AffineTransform::translation(3.3, -0.2);
    const gfx::Rect aligned = pixelAlignedRect({0, 10, 100, 50}, shifted, 2, {200, 100});
    EXPECT_NEAR(shifted.apply(aligned).minX(), 3.5, 1e-9);
    EXPECT_NEAR(shifted.apply(aligned).minY(), 10, 1e-9);
    EXPECT_NEAR(aligned.size.width, 100, 1e-9);
    // Shown at another size, or turned: left as it is.
    const gfx::Rect rect(0.3, 0.3, 100, 50);
    EXPECT_EQ(pixelAlignedRect(rect, {}, 1, {200, 100}), rect);
    EXPECT_EQ(pixelAlignedRect(rect, gfx::AffineTransform::rotation(0.1), 1, {100, 50}), rect);
}

TEST(PictureLayout, TheBackgroundEndsWhereThePictureIsShown) {
    const gfx::Rect picture(0, 70.5, 390, 259);
    const gfx::Rect shown(0, 71, 390, 259);
    EXPECT_EQ(alongPicture(picture, picture, shown), shown);
    // Grown beyond the lower edge only, the upper one still goes with the picture.
    EXPECT_EQ(alongPicture({0, 70.5, 390, 300}, picture, shown), gfx::Rect(0, 71, 390, 299.5));
}

TEST(PictureLayout, AScreenShotMayMissTheViewByLessThanFourAndSixWholePoints) {
    EXPECT_TRUE(fillsView({390, 844}, {390, 844}));
    EXPECT_TRUE(fillsView({386.1, 838.1}, {390, 844}));
    EXPECT_FALSE(fillsView({386, 844}, {390, 844}));
    EXPECT_FALSE(fillsView({390, 850}, {390, 844}));
    EXPECT_TRUE(fillsView({390, 849.9}, {390, 844}));
}

}  // namespace
}  // namespace kalim
