#include <gtest/gtest.h>

#include <numbers>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim::gfx {
namespace {

void expectNear(Point expected, Point actual) {
    EXPECT_NEAR(expected.x, actual.x, 1e-12);
    EXPECT_NEAR(expected.y, actual.y, 1e-12);
}

TEST(AffineTransform, StepsInFrontApplyFirst) {
    const AffineTransform move = AffineTransform::translation(10, 20);
    EXPECT_EQ((Point{12, 26}), move.scaled(2, 3).apply(Point{1, 2}));
    EXPECT_EQ((Point{22, 66}), move.concat(AffineTransform::scaling(2, 3)).apply(Point{1, 2}));
    EXPECT_EQ((Point{16, 33}), AffineTransform::scaling(2, 3).translated(7, 9).apply(Point{1, 2}));
}

TEST(AffineTransform, RotationTurnsXTowardsY) {
    const double quarter = std::numbers::pi / 2;
    expectNear({0, 1}, AffineTransform::rotation(quarter).apply(Point{1, 0}));
    expectNear({5, 9}, AffineTransform::rotation(quarter, {5, 5}).apply(Point{9, 5}));
    const Rect turned = AffineTransform::rotation(quarter).apply(Rect{1, 2, 3, 4});
    expectNear({-6, 1}, turned.origin);
    EXPECT_NEAR(4, turned.size.width, 1e-12);
    EXPECT_NEAR(3, turned.size.height, 1e-12);
}

TEST(AffineTransform, InverseUndoesUnlessThereIsNone) {
    const AffineTransform t{2, 1, -3, 4, 5, 6};
    expectNear({7, -8}, t.inverted().apply(t.apply(Point{7, -8})));
    expectNear({7, -8}, t.apply(t.inverted().apply(Point{7, -8})));
    const AffineTransform flat{1, 2, 2, 4, 5, 6};
    EXPECT_FALSE(flat.isInvertible());
    EXPECT_EQ(flat, flat.inverted());
}

TEST(Rect, RightAndBottomEdgesLieOutsideAndWithoutAreaItStillHasAPlace) {
    const Rect rect{10, 20, 30, 40};
    EXPECT_TRUE(rect.contains(Point{10, 20}));
    EXPECT_FALSE(rect.contains(Point{40, 20}));
    EXPECT_FALSE(rect.contains(Point{10, 60}));
    EXPECT_TRUE(rect.contains(Rect{10, 20, 30, 40}));
    EXPECT_FALSE(rect.intersects({40, 20, 5, 5}));
    EXPECT_TRUE(rect.intersection({40, 20, 5, 5}).isEmpty());
    EXPECT_EQ(Rect(39, 59, 1, 1), rect.intersection({39, 59, 5, 5}));
    EXPECT_EQ(Rect(0, 0, 12, 13), Rect(0, 0, 2, 2).unionWith({12, 13, 0, 0}));
    EXPECT_EQ(Rect(5, 7, 0, 0), Rect(0, 0, 10, 14).inset(6, 8));
    EXPECT_EQ(Rect(-1, -2, 12, 18), Rect(0, 0, 10, 14).inset(-1, -2));
    EXPECT_EQ(Rect(0, 1, 3, 3), Rect(0.2, 1.9, 2.1, 1.2).roundedOut());
    EXPECT_EQ(Rect(0.5, -0.5, 1, 1), Rect(0.6, -0.1, 0.8, 0.3).roundedOut(2));
}

}  // namespace
}  // namespace kalim::gfx
