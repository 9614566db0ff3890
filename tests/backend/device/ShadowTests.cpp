#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <vector>

#include "tests/backend/device/Canvas.h"

namespace kalim::gfx {
namespace {

using test::alphaAt;
using test::Canvas;
using test::inkBox;

const Color black{0, 0, 0, 1};
const Color white{1, 1, 1, 1};

TEST(DrawnShadow, OffsetIsInSurfacePointsWhateverTheTransform) {
    for (const int scale : {1, 2, 3}) {
        SCOPED_TRACE(scale);
        Canvas canvas(20, 20, scale);
        Context& context = canvas.context();
        context.setShadow({{4, 7}, 0, {0, 0, 1, 0.5}});
        context.setFillColor(white);
        context.translate(10, 10);
        context.rotate(std::numbers::pi);
        context.scale(2, 2);
        context.fillRect({0, 0, 2, 1});
        // The shape lies at (6, 8) to (10, 10), its shadow at (10, 15) to (14, 17).
        EXPECT_EQ("#FFFFFFFF", canvas.at(7 * scale, 9 * scale));
        EXPECT_EQ("#0000FF80", canvas.at(10 * scale, 15 * scale));
        EXPECT_EQ("#0000FF80", canvas.at(14 * scale - 1, 17 * scale - 1));
        EXPECT_EQ("#00000000", canvas.at(14 * scale, 16 * scale));
        EXPECT_EQ("#00000000", canvas.at(9 * scale, 16 * scale));
    }
}

TEST(DrawnShadow, StraightEdgeFadesLikeAGaussian) {
    const struct {
        double blur;
        double scale;
    } cases[] = {{1, 1}, {3, 1}, {3, 2}, {3, 3}, {7, 3}, {30, 1}, {30, 3}};
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.blur << " at " << c.scale);
        Canvas canvas(300, 100, c.scale);
        Context& context = canvas.context();
        context.setShadow({{0, 200}, c.blur, black});
        context.fillRect({-200, -300, 350, 350});
        const double sigma = c.blur / 2 * c.scale;
        const BitmapRef pixels = canvas.pixels();
        const int edge = static_cast<int>(150 * c.scale);
        const int row = static_cast<int>(75 * c.scale);
        for (int d = -static_cast<int>(3 * sigma) - 2; d < 3 * sigma + 2; ++d) {
            const double expected = 127.5 * std::erfc((d + 0.5) / sigma / std::numbers::sqrt2);
            EXPECT_NEAR(expected, alphaAt(*pixels, edge + d, row), test::shadowTolerance(sigma))
                << d;
        }
        EXPECT_EQ(255, alphaAt(*pixels, edge - static_cast<int>(4 * sigma) - 4, row));
        EXPECT_EQ(0, alphaAt(*pixels, edge + static_cast<int>(4 * sigma) + 4, row));
    }
}

TEST(DrawnShadow, EverythingCastsOne) {
    Bitmap bitmap(2, 2);
    bitmap.setColorAt(0, 0, white);
    bitmap.setColorAt(1, 1, white);
    const ImageRef image = test::testDevice().makeImage(bitmap, 1, ImageOrientation::Up);
    std::vector<std::function<void(Context&)>> shapes = {
        [](Context& c) {
            c.fillRect({8, 8, 20, 20});
        },
        [](Context& c) {
            c.setLineWidth(4);
            c.strokeEllipse({10, 10, 20, 20});
        },
        [&](Context& c) {
            c.drawImage(*image, {8, 8, 20, 20});
        },
        [](Context& c) {
            c.drawText("漢", {8, 28}, {.family = "", .size = 24});
        },
        [](Context& c) {
            c.beginTransparencyGroup();
            c.fillRect({8, 8, 10, 10});
            c.fillRect({14, 14, 10, 10});
            c.endTransparencyGroup();
        },
    };
    if (test::castsShadowsOfOutlinedText()) {
        shapes.emplace_back([](Context& c) {
            c.setTextMode(TextMode::Stroke);
            c.drawText("漢", {8, 28}, {.family = "", .size = 24});
        });
    }
    int number = 0;
    for (const auto& shape : shapes) {
        SCOPED_TRACE(number++);
        for (const int scale : {1, 2}) {
            const auto draw = [&](bool withShadow) {
                Canvas canvas(80, 40, scale);
                canvas.context().setFillColor(white);
                canvas.context().setStrokeColor(white);
                canvas.context().setAlpha(0.5);
                if (withShadow) canvas.context().setShadow({{40, 2}, 0, {1, 0, 0, 0.5}});
                shape(canvas.context());
                return canvas.pixels();
            };
            const BitmapRef plain = draw(false);
            const BitmapRef both = draw(true);
            // The shadow is the shape's alpha moved by the offset and halved by the colour's.
            for (int y = 0; y < 38 * scale; ++y) {
                for (int x = 0; x < 40 * scale; ++x) {
                    // Backends round differently on a surface that is still clear.
                    ASSERT_NEAR(alphaAt(*plain, x, y), alphaAt(*both, x, y),
                                test::shadowTolerance(0))
                        << x << "," << y;
                    ASSERT_NEAR(alphaAt(*plain, x, y) * 128 / 255,
                                alphaAt(*both, x + 40 * scale, y + 2 * scale),
                                test::shadowTolerance(0))
                        << x << "," << y;
                }
            }
            EXPECT_GT(inkBox(*plain).area(), 100 * scale * scale);
        }
    }
}

TEST(DrawnShadow, LiesUnderWhatCastsIt) {
    Canvas canvas(10, 10);
    canvas.context().setShadow({{0, 0}, 0, black});
    canvas.context().setFillColor({1, 1, 1, 0.5});
    canvas.context().fillRect({0, 0, 10, 10});
    // Half black under half white.
    EXPECT_EQ("#AAAAAAC0", canvas.at(5, 5));
    canvas.context().setBlendMode(BlendMode::Copy);
    canvas.context().fillRect({0, 0, 10, 10});
    EXPECT_EQ("#FFFFFF80", canvas.at(5, 5));
}

TEST(DrawnShadow, ClippedDrawingEqualsAPartOfTheWhole) {
    const std::function<void(Context&)> shapes[] = {
        [](Context& c) {
            c.fillRect({10, 10, 40, 25});
        },
        [](Context& c) {
            c.beginTransparencyGroup();
            c.fillRect({5, 5, 30, 10});
            c.fillRect({15, 5, 10, 40});
            c.endTransparencyGroup();
        },
        [](Context& c) {
            c.beginTransparencyGroup();
            c.beginTransparencyGroup();
            c.fillRect({10, 10, 40, 25});
            c.endTransparencyGroup();
            c.endTransparencyGroup();
        },
    };
    // The second clip sees nothing but shadow.
    for (const Rect& part : {Rect{20, 15, 20, 30}, Rect{28, 36, 20, 20}}) {
        for (const double blur : {3.0, 20.0}) {
            for (const auto& shape : shapes) {
                const auto draw = [&](bool clipped) {
                    Canvas canvas(70, 70, 2);
                    Context& context = canvas.context();
                    if (clipped) context.clipToRect(part);
                    context.setShadow({{6, 5}, blur, black});
                    context.setFillColor(white);
                    shape(context);
                    return canvas.pixels();
                };
                const BitmapRef whole = draw(false);
                const BitmapRef clipped = draw(true);
                EXPECT_FALSE(inkBox(*clipped).isEmpty());
                for (int y = 0; y < 140; ++y) {
                    for (int x = 0; x < 140; ++x) {
                        const bool inside = part.contains(Point{x / 2.0, y / 2.0});
                        for (int c = 0; c < 4; ++c) {
                            const int expected = inside ? whole->row(y)[4 * x + c] : 0;
                            ASSERT_NEAR(expected, clipped->row(y)[4 * x + c],
                                        inside ? test::clipTolerance() : 0)
                                << x << "," << y;
                        }
                    }
                }
            }
        }
    }
}

}  // namespace
}  // namespace kalim::gfx
