#include "kalimkit/gfx/Path.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numbers>

namespace kalim::gfx {
namespace {

constexpr double pi = std::numbers::pi;

void expectNear(const Rect& expected, const Rect& actual, double error = 1e-3) {
    EXPECT_NEAR(expected.minX(), actual.minX(), error);
    EXPECT_NEAR(expected.minY(), actual.minY(), error);
    EXPECT_NEAR(expected.maxX(), actual.maxX(), error);
    EXPECT_NEAR(expected.maxY(), actual.maxY(), error);
}

TEST(Path, BoundingBoxHoldsOnlyWhatIsDrawn) {
    Path quad;
    quad.moveTo({0, 0});
    quad.quadTo({5, 10}, {10, 0});
    expectNear({0, 0, 10, 5}, quad.boundingBox());
    const struct {
        Point from, a, b, to;
        Rect box;
    } curves[] = {
        {{0, 0}, {0, 4}, {6, 4}, {6, 0}, {0, 0, 6, 3}},
        // The same parabola as the quad: its derivative has no square term.
        {{0, 0}, {10.0 / 3, 20.0 / 3}, {20.0 / 3, 20.0 / 3}, {10, 0}, {0, 0, 10, 5}},
        // Out and back on a line: x = 9 t (1 - t)² has its largest value 4/3 at t = 1/3.
        {{0, 7}, {3, 7}, {0, 7}, {0, 7}, {0, 7, 4.0 / 3, 0}},
    };
    for (const auto& curve : curves) {
        Path path;
        path.moveTo(curve.from);
        path.cubicTo(curve.a, curve.b, curve.to);
        expectNear(curve.box, path.boundingBox());
    }
    Path ellipse;
    ellipse.addEllipse({10, 20, 30, 40});
    expectNear({10, 20, 30, 40}, ellipse.boundingBox());
    EXPECT_EQ((Point{40, 40}), ellipse.currentPoint());
    Path path;
    EXPECT_EQ(Rect(), path.boundingBox());
    path.moveTo({3, 4});
    EXPECT_EQ(Rect(3, 4, 0, 0), path.boundingBox());
    path.lineTo({5, 1});
    path.moveTo({100, 100});
    EXPECT_EQ(Rect(3, 1, 2, 3), path.boundingBox());
}

TEST(Path, ArcSweepsToTheSideThatItsDirectionAsksFor) {
    const struct {
        double start;
        double end;
        bool clockwise;
        long quarters;
        Point last;
        Rect box;
    } cases[] = {
        {0, pi / 2, false, 1, {0, 10}, {0, 0, 10, 10}},
        {0, pi / 2, true, 3, {0, 10}, {-10, -10, 20, 20}},
        {0, -pi / 2, false, 3, {0, -10}, {-10, -10, 20, 20}},
        {0, -pi / 2, true, 1, {0, -10}, {0, -10, 10, 10}},
        {pi, 0, false, 2, {10, 0}, {-10, -10, 20, 10}},
        {0, 2 * pi, false, 4, {10, 0}, {-10, -10, 20, 20}},
        {0, -2 * pi, true, 4, {10, 0}, {-10, -10, 20, 20}},
        {0, 0, false, 0, {10, 0}, {10, 0, 0, 0}},
        {0, 2 * pi, true, 0, {10, 0}, {10, 0, 0, 0}},
        // More than two turns draw no more than one and the rest.
        {0, 9 * pi, false, 6, {-10, 0}, {-10, -10, 20, 20}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.start << " to " << c.end << " " << c.clockwise);
        Path path;
        path.addArc({0, 0}, 10, c.start, c.end, c.clockwise);
        EXPECT_EQ(c.quarters, std::ranges::count(path.commands(), PathCommand::Cubic));
        expectNear({c.last, {}}, {path.currentPoint(), {}}, 1e-9);
        expectNear(c.box, path.boundingBox(), 3e-3);
    }
}

TEST(Path, ArcWithoutARadiusIsItsCentre) {
    Path dot;
    dot.addArc({20, 30}, 0, 0, pi, false);
    Path expected;
    expected.moveTo({20, 30});
    EXPECT_EQ(expected, dot);
}

TEST(Path, DrawingStartsByItselfAndGoesOnFromWhereAClosedPathBegan) {
    Path path;
    path.close();
    EXPECT_TRUE(path.isEmpty());
    path.lineTo({1, 1});
    path.lineTo({5, 1});
    path.lineTo({5, 5});
    path.close();
    path.close();
    EXPECT_EQ((Point{1, 1}), path.currentPoint());
    EXPECT_EQ(4U, path.commands().size());
    EXPECT_EQ(PathCommand::Move, path.commands()[0]);

    Path curve;
    curve.quadTo({1, 2}, {3, 4});
    EXPECT_EQ((std::vector<Point>{{1, 2}, {1, 2}, {3, 4}}), curve.points());
}

TEST(Path, TransformAndAdditionCarryTheCurrentPoint) {
    Path path;
    path.addRect({1, 2, 3, 4});
    const Path moved = path.transformed(AffineTransform::scaling(2, 10));
    EXPECT_EQ(Rect(2, 20, 6, 40), moved.boundingBox());
    EXPECT_EQ((Point{2, 20}), moved.currentPoint());
    path.addPath(moved);
    EXPECT_EQ((Point{2, 20}), path.currentPoint());
    EXPECT_EQ(Rect(1, 2, 7, 58), path.boundingBox());
    path.addPath(path);
    EXPECT_EQ(20U, path.commands().size());
    EXPECT_EQ(16U, path.points().size());
}

}  // namespace
}  // namespace kalim::gfx
