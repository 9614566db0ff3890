#include <gtest/gtest.h>

#include <functional>

#include "kalimkit/gfx/ExtentContext.h"
#include "tests/backend/device/Canvas.h"

namespace kalim::gfx {
namespace {

// What is painted within 200 x 200 points must lie within the extent, and may fall short of it by
// no more than the given points on any side.
struct Drawing {
    const char* name;
    double slack;
    std::function<void(Context&)> draw;
};

const Drawing drawings[] = {
    {"a filled box", 1,
     [](Context& c) {
         c.fillRect({50.3, 60.7, 30, 20});
     }},
    {"a thick line with round ends", 1,
     [](Context& c) {
         c.setLineCap(LineCap::Round);
         c.setLineJoin(LineJoin::Round);
         c.setLineWidth(9);
         c.moveTo({50, 60});
         c.lineTo({120, 90});
         c.stroke();
     }},
    {"a thick line with square ends", 1,
     [](Context& c) {
         c.setLineCap(LineCap::Square);
         c.setLineJoin(LineJoin::Round);
         c.setLineWidth(20);
         c.moveTo({50, 50});
         c.lineTo({90, 90});
         c.stroke();
     }},
    // Its tip reaches nearly ten times as far as the pen: 19 points.
    {"a sharp corner", 21,
     [](Context& c) {
         c.setLineJoin(LineJoin::Miter);
         c.setLineWidth(4);
         c.moveTo({60, 100});
         c.lineTo({120, 100});
         c.lineTo({60, 112.75});
         c.stroke();
     }},
    {"a pen turned and stretched", 4,
     [](Context& c) {
         c.setLineJoin(LineJoin::Round);
         c.setLineWidth(4);
         c.translate(100, 100);
         c.rotate(0.5);
         c.scale(1, 2.5);
         c.strokeRect({-20, -10, 40, 20});
     }},
    {"a shadow", 8,
     [](Context& c) {
         c.setShadow({{5, 8}, 6, {0, 0, 0, 1}});
         c.fillRect({60, 60, 40, 40});
     }},
    {"a group with a shadow", 8,
     [](Context& c) {
         c.setShadow({{-6, 3}, 4, {0, 0, 0, 1}});
         c.beginTransparencyGroup();
         c.fillEllipse({80, 80, 40, 30});
         c.endTransparencyGroup();
     }},
    {"an outlined text", 40,
     [](Context& c) {
         c.setTextMode(TextMode::Stroke);
         c.setLineJoin(LineJoin::Round);
         c.setLineWidth(6);
         c.drawText("fgjy 文", {60, 110}, {"", 30, true, true});
     }},
};

TEST(ExtentContext, HoldsAllThatIsPaintedAndLittleMore) {
    for (const Drawing& drawing : drawings) {
        SCOPED_TRACE(drawing.name);
        ExtentContext extents(test::testDevice());
        drawing.draw(extents);
        test::Canvas canvas(200, 200, 2);
        drawing.draw(canvas.context());
        const Rect pixels = test::inkBox(*canvas.pixels());
        const Rect painted(pixels.origin * 0.5, pixels.size * 0.5);
        ASSERT_FALSE(painted.isEmpty());
        EXPECT_TRUE(extents.extent().inset(-0.5, -0.5).contains(painted));
        EXPECT_TRUE(painted.inset(-drawing.slack, -drawing.slack).contains(extents.extent()));
    }
}

TEST(ExtentContext, IsEmptyForWhatShowsNothing) {
    ExtentContext extents(test::testDevice());
    extents.fillRect({50, 50, 0, 10});
    extents.moveTo({5, 5});
    EXPECT_TRUE(extents.extent().isEmpty());
}

}  // namespace
}  // namespace kalim::gfx
