#include <gtest/gtest.h>

#include <limits>

#include "tests/backend/device/Canvas.h"
#include "tests/support/RecordingDevice.h"

namespace kalim::gfx {
namespace {

using test::Canvas;
using test::testDevice;

TEST(DrawnSurface, SizeIsRoundedUpToWholePixels) {
    const struct {
        Size size;
        double scale;
        PixelSize pixels;
    } cases[] = {
        {{100, 50}, 1, {100, 50}}, {{100, 50}, 3, {300, 150}},
        {{10.1, 0.2}, 2, {21, 1}}, {{100.0000001, 33.3333333}, 3, {300, 100}},
        {{1e-9, 1}, 1, {1, 1}},    {{32767, 1}, 1, {32767, 1}},
    };
    for (const auto& c : cases) {
        const auto surface = testDevice().makeSurface(c.size, c.scale, false);
        ASSERT_NE(nullptr, surface);
        EXPECT_EQ(c.pixels, surface->pixelSize());
        EXPECT_EQ(c.scale, surface->scale());
    }
}

TEST(DrawnSurface, ThereIsNoneForASizeThatCannotBe) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinity = std::numeric_limits<double>::infinity();
    for (const Size size : {Size{0, 5}, Size{5, -1}, Size{nan, 5}, Size{5, infinity},
                            Size{32768, 1}, Size{16384, 1}, Size{1e300, 1}}) {
        EXPECT_EQ(nullptr, testDevice().makeSurface(size, 2, true)) << size.width;
    }
    for (const double scale : {0.0, -1.0, nan, infinity}) {
        EXPECT_EQ(nullptr, testDevice().makeSurface({5, 5}, scale, true)) << scale;
    }
    EXPECT_EQ(nullptr, testDevice().makeImage(Bitmap(0, 4), 1, ImageOrientation::Up));
}

TEST(DrawnSurface, OpaqueStaysOpaqueWhateverIsDrawn) {
    Canvas canvas(6, 1, 1, true);
    Context& context = canvas.context();
    context.setFillColor({1, 0, 0, 0.5});
    const BlendMode modes[] = {BlendMode::Normal, BlendMode::SourceIn, BlendMode::Copy,
                               BlendMode::Clear};
    for (int x = 0; x < 4; ++x) {
        context.setBlendMode(modes[x]);
        context.fillRect({x * 1.0, 0, 1, 1});
    }
    context.setBlendMode(BlendMode::Normal);
    context.setAlpha(0.5);
    context.setFillColor({1, 1, 1, 1});
    context.beginTransparencyGroup();
    context.fillRect({4, 0, 1, 1});
    context.endTransparencyGroup();
    for (int x = 0; x < 3; ++x)
        EXPECT_EQ("#800000FF", canvas.at(x, 0)) << x;
    EXPECT_EQ("#000000FF", canvas.at(3, 0));
    EXPECT_EQ("#808080FF", canvas.at(4, 0));
    EXPECT_EQ("#000000FF", canvas.at(5, 0));
    EXPECT_TRUE(canvas.surface().isOpaque());
}

TEST(DrawnSurface, LaterDrawingDoesNotChangeAPictureOfIt) {
    Canvas canvas(4, 3, 2);
    canvas.context().setFillColor({0, 1, 0, 1});
    canvas.context().fillRect({0, 0, 4, 3});
    const ImageRef image = canvas.surface().makeImage();
    canvas.context().setFillColor({1, 0, 0, 1});
    canvas.context().fillRect({0, 0, 4, 3});
    EXPECT_EQ("#00FF00FF", image->pixels()->colorAt(7, 5).hex());
    EXPECT_EQ((Size{4, 3}), image->size());
    EXPECT_EQ((PixelSize{8, 6}), image->pixelSize());
    EXPECT_EQ(ImageOrientation::Up, image->orientation());
}

}  // namespace
}  // namespace kalim::gfx
