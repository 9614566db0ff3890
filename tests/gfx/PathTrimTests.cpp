#include "kalimkit/gfx/PathTrim.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "kalimkit/gfx/RoundedRect.h"

namespace kalim::gfx {

namespace {

Path polyline(std::initializer_list<Point> points) {
    Path path;
    for (const Point p : points)
        path.isEmpty() ? path.moveTo(p) : path.lineTo(p);
    return path;
}

TEST(PathTrim, CutsByLengthAcrossLinesClosingsAndSubpaths) {
    Path triangle = polyline({{0, 0}, {30, 0}, {30, 40}});  // 30 + 40, and 50 for the way back
    triangle.close();
    Path two = polyline({{0, 0}, {10, 0}});
    two.addPath(polyline({{0, 5}, {30, 5}}));
    const struct {
        const char* what;
        Path path;
        double start;
        double end;
        Path expected;
    } cases[] = {
        {"a corner within", triangle, 0.125, 0.375, polyline({{15, 0}, {30, 0}, {30, 15}})},
        {"the closing line", triangle, 85.0 / 120, 1, polyline({{21, 28}, {0, 0}})},
        {"the end of one subpath alone", two, 0.125, 0.25, polyline({{5, 0}, {10, 0}})},
        {"the second subpath alone", two, 0.25, 0.5, polyline({{0, 5}, {10, 5}})},
        {"shares beyond the ends", two, -1, 0.25, polyline({{0, 0}, {10, 0}})},
        {"nothing", triangle, 0.5, 0.5, {}},
        {"the wrong way round", triangle, 0.7, 0.2, {}},
        {"no number", triangle, std::nan(""), 1, {}},
        {"no length", polyline({{3, 3}, {3, 3}}), 0, 1, {}},
    };
    for (const auto& each : cases) {
        const Path trimmed = trimPath(each.path, each.start, each.end);
        EXPECT_EQ(trimmed.commands(), each.expected.commands()) << each.what;
        ASSERT_EQ(trimmed.points().size(), each.expected.points().size()) << each.what;
        for (std::size_t i = 0; i < trimmed.points().size(); ++i) {
            EXPECT_NEAR(trimmed.points()[i].x, each.expected.points()[i].x, 1e-9) << each.what;
            EXPECT_NEAR(trimmed.points()[i].y, each.expected.points()[i].y, 1e-9) << each.what;
        }
    }
}

TEST(PathTrim, CurvesAreCutWhereTheirLengthSays) {
    Path circle;
    circle.addEllipse({-10, -10, 20, 20});
    // An eighth in, within the first cubic, to half way, at the end of the second.
    const Path arc = trimPath(circle, 0.125, 0.5);
    ASSERT_EQ(arc.commands().size(), 3u);
    const double diagonal = 10 / std::numbers::sqrt2;
    EXPECT_NEAR(arc.points().front().x, diagonal, 0.01);
    EXPECT_NEAR(arc.points().front().y, diagonal, 0.01);
    EXPECT_NEAR(arc.points().back().x, -10, 1e-9);
    EXPECT_NEAR(arc.points().back().y, 0, 1e-9);

    // x is the square of the parameter, so that lengths and parameters differ.
    Path slow;
    slow.moveTo({0, 0});
    slow.quadTo({0, 0}, {100, 0});
    EXPECT_NEAR(trimPath(slow, 0, 0.25).boundingBox().maxX(), 25, 0.1);
}

TEST(RoundedRect, TakesNoLargerRadiusThanFits) {
    EXPECT_EQ(roundedRect({0, 0, 40, 20}, 50), roundedRect({0, 0, 40, 20}, 10));
    const Rect box = roundedRect({5, 6, 40, 20}, 8).boundingBox();
    EXPECT_NEAR(box.minX(), 5, 1e-9);
    EXPECT_NEAR(box.maxY(), 26, 1e-9);
    Path sharp;
    sharp.addRect({0, 0, 4, 4});
    EXPECT_EQ(roundedRect({0, 0, 4, 4}, -1), sharp);
}

}  // namespace

}  // namespace kalim::gfx
