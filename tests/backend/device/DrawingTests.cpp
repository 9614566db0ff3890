#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>

#include "tests/backend/device/Canvas.h"

namespace kalim::gfx {
namespace {

using test::alphaAt;
using test::Canvas;
using test::inkBox;

const Color opaqueRed{1, 0, 0, 1};
const Color opaqueBlue{0, 0, 1, 1};

TEST(Drawing, FillsCoverWhatTheyCoverAtEveryScale) {
    for (const int scale : {1, 2, 3}) {
        SCOPED_TRACE(scale);
        Canvas canvas(10, 10, scale);
        canvas.context().setFillColor(opaqueRed);
        canvas.context().fillRect({2, 3, 4, 5});
        const BitmapRef pixels = canvas.pixels();
        EXPECT_EQ(Rect(2.0 * scale, 3.0 * scale, 4.0 * scale, 5.0 * scale), inkBox(*pixels, 255));
        EXPECT_EQ(inkBox(*pixels, 255), inkBox(*pixels));
    }
    Canvas half(2, 1);
    half.context().fillRect({0.5, 0, 1, 1});
    EXPECT_NEAR(128, alphaAt(*half.pixels(), 0, 0), 1);
}

TEST(Drawing, FillsAreNonZero) {
    Canvas canvas(3, 3);
    canvas.context().addRect({0, 0, 3, 3});
    canvas.context().addRect({1, 1, 1, 1});
    canvas.context().fill();
    EXPECT_EQ("#000000FF", canvas.at(1, 1));
}

TEST(Drawing, CurvesStayTrueWhenTheyAreEnlarged) {
    // The ellipse's area is π/4 of its box.
    Canvas canvas(40, 20, 3);
    canvas.context().fillEllipse({0, 0, 40, 20});
    const BitmapRef pixels = canvas.pixels();
    double area = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 120; ++x)
            area += alphaAt(*pixels, x, y) / 255.0;
    }
    EXPECT_NEAR(std::numbers::pi / 4 * 7200, area, 12);
    // A quadratic reaches half of its control's height.
    Canvas arch(10, 10);
    arch.context().moveTo({0, 0});
    arch.context().quadTo({5, 10}, {10, 0});
    arch.context().fill();
    EXPECT_EQ(5, inkBox(*arch.pixels()).maxY());
}

TEST(Drawing, PenFollowsTheTransformOfTheStroke) {
    Canvas canvas(30, 30, 2);
    Context& context = canvas.context();
    context.setLineWidth(2);
    context.scale(3, 1);
    context.strokeRect({2, 5, 5, 20});
    const BitmapRef pixels = canvas.pixels();
    // 6 points wide where it runs down, 2 points where it runs across.
    EXPECT_EQ(Rect(6, 8, 42, 44), inkBox(*pixels));
    EXPECT_EQ(255, alphaAt(*pixels, 17, 30));
    EXPECT_EQ(0, alphaAt(*pixels, 18, 30));
    EXPECT_EQ(255, alphaAt(*pixels, 24, 11));
    EXPECT_EQ(0, alphaAt(*pixels, 24, 12));
}

TEST(Drawing, CapsAndJoinsReachAsFarAsTheyShould) {
    const struct {
        LineCap cap;
        LineJoin join;
        Rect ink;
    } cases[] = {
        // From (10, 20) to (20, 20) to (20, 10), 8 wide.
        {LineCap::Butt, LineJoin::Miter, {10, 10, 14, 14}},
        {LineCap::Square, LineJoin::Miter, {6, 6, 18, 18}},
        {LineCap::Round, LineJoin::Round, {6, 6, 18, 18}},
    };
    for (const auto& c : cases) {
        Canvas canvas(30, 30);
        Context& context = canvas.context();
        context.setLineWidth(8);
        context.setLineCap(c.cap);
        context.setLineJoin(c.join);
        context.moveTo({10, 20});
        context.lineTo({20, 20});
        context.lineTo({20, 10});
        context.stroke();
        EXPECT_EQ(c.ink, inkBox(*canvas.pixels()));
        EXPECT_EQ(c.join == LineJoin::Miter, alphaAt(*canvas.pixels(), 23, 23) == 255);
    }
}

TEST(Drawing, RectanglesWithoutAntialiasingArePaintedWhereTheyHoldAPixelsMiddle) {
    for (const bool isClip : {false, true}) {
        Canvas canvas(20, 20);
        canvas.context().setAntialias(false);
        if (isClip) canvas.context().clipToRect({1.3, 1.6, 9.4, 7.2});
        canvas.context().fillRect(isClip ? Rect{0, 0, 20, 20} : Rect{1.3, 1.6, 9.4, 7.2});
        const BitmapRef pixels = canvas.pixels();
        EXPECT_EQ(Rect(1, 2, 10, 7), inkBox(*pixels));
        EXPECT_EQ(Rect(1, 2, 10, 7), inkBox(*pixels, 255));
    }
}

TEST(Drawing, ClipIsSavedAndRestored) {
    Canvas canvas(4, 1);
    Context& context = canvas.context();
    context.setFillColor(opaqueRed);
    {
        GraphicsStateGuard guard(context);
        context.clipToRect({1, 0, 3, 1});
        context.clipToRect({0, 0, 2, 1});
        context.fillRect({0, 0, 4, 1});
    }
    EXPECT_EQ(Rect(1, 0, 1, 1), inkBox(*canvas.pixels()));
    {
        GraphicsStateGuard guard(context);
        context.beginPath();
        context.clip();
        context.setFillColor(opaqueBlue);
        context.fillRect({0, 0, 4, 1});
    }
    EXPECT_EQ("#FF0000FF", canvas.at(1, 0));
    context.fillRect({3, 0, 1, 1});
    EXPECT_EQ("#FF0000FF", canvas.at(3, 0));
}

TEST(Drawing, GroupIsPaintedAsOne) {
    Canvas canvas(3, 1);
    Context& context = canvas.context();
    context.setAlpha(0.5);
    context.beginTransparencyGroup();
    context.setFillColor(opaqueBlue);
    context.fillRect({0, 0, 2, 1});
    context.setFillColor(opaqueRed);
    context.fillRect({1, 0, 2, 1});
    context.setBlendMode(BlendMode::Clear);
    context.fillRect({2, 0, 1, 1});
    context.endTransparencyGroup();
    EXPECT_EQ("#0000FF80", canvas.at(0, 0));
    EXPECT_EQ("#FF000080", canvas.at(1, 0));
    EXPECT_EQ("#00000000", canvas.at(2, 0));
}

TEST(Drawing, BlendModesChangeNothingOutsideTheShape) {
    // Five pixels: opaque blue, half blue, nothing, and two that the shape leaves out.
    const struct {
        BlendMode mode;
        const char* onOpaque;
        const char* onHalf;
        const char* onNothing;
    } cases[] = {
        {BlendMode::Normal, "#80007FFF", "#AA0055C0", "#FF000080"},
        {BlendMode::SourceIn, "#FF000080", "#FF000040", "#00000000"},
        {BlendMode::Copy, "#FF000080", "#FF000080", "#FF000080"},
        {BlendMode::Clear, "#00000000", "#00000000", "#00000000"},
        {BlendMode::Multiply, "#00007FFF", "#550055C0", "#FF000080"},
    };
    Bitmap red(1, 1);
    red.setColorAt(0, 0, opaqueRed);
    const ImageRef image = test::testDevice().makeImage(red, 1, ImageOrientation::Up);
    const std::function<void(Context&)> shapes[] = {
        [](Context& c) {
            c.setFillColor({1, 0, 0, 0.5});
            c.fillRect({0, 0, 3, 1});
        },
        [](Context& c) {
            c.setStrokeColor({1, 0, 0, 0.5});
            c.setLineWidth(1);
            c.moveTo({0, 0.5});
            c.lineTo({3, 0.5});
            c.stroke();
        },
        [&](Context& c) {
            c.setAlpha(0.5);
            c.drawImage(*image, {0, 0, 3, 1});
        },
        [&](Context& c) {
            c.setAlpha(0.5);
            c.setFillPattern({image, {}});
            c.fillRect({0, 0, 3, 1});
        },
    };
    for (const auto& c : cases) {
        int number = 0;
        for (const auto& shape : shapes) {
            SCOPED_TRACE(testing::Message() << static_cast<int>(c.mode) << " " << number++);
            Canvas canvas(5, 1, 2);
            Context& context = canvas.context();
            context.setFillColor(opaqueBlue);
            context.fillRect({0, 0, 1, 1});
            context.fillRect({4, 0, 1, 1});
            context.setFillColor({0, 0, 1, 0.5});
            context.fillRect({1, 0, 1, 1});
            context.setBlendMode(c.mode);
            shape(context);
            EXPECT_EQ(c.onOpaque, canvas.at(1, 1));
            // A browser rounds once more where it multiplies.
            const bool isRounded = c.mode == BlendMode::Multiply && canvas.at(3, 1) == "#550055BF";
            EXPECT_EQ(c.onHalf, isRounded ? c.onHalf : canvas.at(3, 1));
            EXPECT_EQ(c.onNothing, canvas.at(5, 1));
            EXPECT_EQ("#00000000", canvas.at(7, 1));
            EXPECT_EQ("#0000FFFF", canvas.at(9, 1));
        }
    }
}

TEST(Drawing, NothingPutsItOutOfOrder) {
    Canvas canvas(20, 20, 2);
    Context& context = canvas.context();
    Bitmap dot(1, 1);
    dot.setColorAt(0, 0, opaqueBlue);
    const ImageRef image = test::testDevice().makeImage(dot, 1, ImageOrientation::Up);
    context.setShadow({{1e12, -1e12}, 1e12, {0, 0, 0, 1}});
    for (const double size : {1e-300, 1e-12, 1e-4, 1e5, 1e12, 1e150}) {
        SCOPED_TRACE(size);
        GraphicsStateGuard guard(context);
        context.setFillPattern({image, AffineTransform::scaling(size, size)});
        context.scale(size, size);
        context.setLineWidth(size);
        for (const double at : {0.0, size, -size}) {
            context.fillRect({at, at, 10, 10});
            context.strokeEllipse({at, at, 10, 10});
            context.drawImage(*image, {at, at, 10, 10});
            context.drawText("漢", {at, at}, {.family = "", .size = std::min(size, 1e5)});
            context.setTextMode(TextMode::Stroke);
            context.drawText("a", {at, at}, {});
        }
        context.beginTransparencyGroup();
        context.rotate(size);
        context.clipToRect({0, 0, size, size});
        context.endTransparencyGroup();
    }
    context.clearShadow();
    context.setFillColor(opaqueRed);
    context.fillRect({0, 0, 20, 20});
    EXPECT_EQ("#FF0000FF", canvas.at(39, 39));
}

TEST(Drawing, FarAwayCornersStillCover) {
    Canvas canvas(4, 4);
    canvas.context().fillRect({-1e9, -1e9, 2e9, 2e9});
    EXPECT_EQ(Rect(0, 0, 4, 4), inkBox(*canvas.pixels(), 255));
}

}  // namespace
}  // namespace kalim::gfx
