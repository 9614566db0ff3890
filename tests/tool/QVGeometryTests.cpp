#include "kalimkit/tool/QVGeometry.h"

#include <gtest/gtest.h>

#include <numbers>
#include <tuple>

#include "kalimkit/tool/HandleReach.h"
#include "tests/support/TestHost.h"

namespace kalim {
namespace {

constexpr double halfPi = std::numbers::pi / 2;

TEST(QVGeometry, AnglesAreMeasuredFromStraightDown) {
    EXPECT_NEAR(QVPointAngle({0, 0}, {0, 10}), 0, 1e-7);
    EXPECT_NEAR(QVPointAngle({0, 0}, {10, 0}), -halfPi, 1e-7);
    EXPECT_NEAR(QVPointAngle({0, 0}, {0, -10}), -std::numbers::pi, 1e-6);
    EXPECT_NEAR(QVPointAngle({0, 0}, {-10, 0}), halfPi, 1e-6);
}

TEST(QVGeometry, DistanceIsSinglePrecision) {
    EXPECT_EQ(QVPointDistance({0, 0}, {3, 4}), 5);
    // 2^24 + 1 has no single-precision form: its square root comes out as that of 2^24.
    EXPECT_EQ(QVPointDistance({0, 0}, {4096, 1}), 4096);
}

TEST(QVGeometry, ApproximateEqualityEndsBeforeOnePoint) {
    EXPECT_TRUE(QVPointApproximateEqual({0, 0}, {0.999, 0}));
    EXPECT_FALSE(QVPointApproximateEqual({0, 0}, {1, 0}));
    EXPECT_FALSE(QVSizeApproximateEqual({5, 5}, {5, 6}));
    EXPECT_TRUE(QVRectApproximateEqual({1, 2, 3, 4}, {1.5, 2.5, 3.5, 4.5}));
    EXPECT_FALSE(QVRectApproximateEqual({1, 2, 3, 4}, {1, 2, 3, 5}));
}

TEST(QVGeometry, SizesSnapToDevicePixelsWithTiesToEven) {
    const test::TestHost host({.scale = 2});
    EXPECT_EQ(QVMakeScreenCompatibleSize({10.3, 10.25}), (gfx::Size{10.5, 10.0}));
    EXPECT_EQ(QVMakeScreenCompatibleSize({10.75, 0.2}), (gfx::Size{11.0, 0.0}));
}

TEST(QVGeometry, PathsScaleAboutTheCentreOfWhatIsDrawn) {
    gfx::Path path;
    path.moveTo({0, 0});
    // The control point lies outside; the curve itself only reaches y = 10, so the centre is (10,
    // 5).
    path.quadTo({10, 20}, {20, 0});
    const gfx::Path doubled = CGPath_ZRCreateCopyByScalingPathAroundCentre(path, 2);
    EXPECT_EQ(doubled.boundingBox(), gfx::Rect(-10, -5, 40, 20));
    const gfx::Path point = CGPath_ZRCreateCopyByScalingPathAroundCentre(path, 0);
    EXPECT_EQ(point.boundingBox(), gfx::Rect(10, 5, 0, 0));
    EXPECT_TRUE(CGPath_ZRCreateCopyByScalingPathAroundCentre({}, 2).isEmpty());
}

TEST(HandleReach, LeavesTheMiddleThirdOfABoxToItsBody) {
    using enum MoveDirection;
    const gfx::Rect box(100, 100, 30, 60);
    const std::tuple<gfx::Point, MoveDirection, bool> cases[] = {
        {{110, 120}, TopLeft, true},      {{111, 120}, TopLeft, false},
        {{110, 121}, TopLeft, false},     {{60, 60}, TopLeft, true},
        {{120, 120}, TopRight, true},     {{119, 120}, TopRight, false},
        {{140, 141}, BottomRight, true},  {{140, 139}, BottomRight, false},
        {{110, 140}, BottomLeft, true},   {{115, 180}, BottomLeft, false},
        {{115, 130}, BottomRight, false}, {{115, 130}, Body, true},
    };
    for (const auto& [p, corner, isWithin] : cases)
        EXPECT_EQ(isWithinThirdsOfCorner(p, corner, box), isWithin) << p.x << " " << p.y;
}

TEST(HandleReach, LeavesTheMiddleThirdOfALineAndOfAVertexShape) {
    EXPECT_TRUE(isWithinThirdOfSegment({10, 5}, {0, 0}, {30, 0}));
    EXPECT_FALSE(isWithinThirdOfSegment({11, 5}, {0, 0}, {30, 0}));
    EXPECT_TRUE(isWithinThirdOfSegment({-50, 0}, {0, 0}, {30, 0}));
    // Two ends at one place are reached from everywhere.
    EXPECT_TRUE(isWithinThirdOfSegment({4, 4}, {0, 0}, {0, 0}));

    const gfx::Rect box(0, 0, 30, 30);
    EXPECT_TRUE(isWithinThirdsOfVertex({10, 10}, {0, 0}, box));
    EXPECT_FALSE(isWithinThirdsOfVertex({15, 5}, {0, 0}, box));
    EXPECT_TRUE(isWithinThirdsOfVertex({35, 5}, {0, 0}, box));
}

}  // namespace
}  // namespace kalim
