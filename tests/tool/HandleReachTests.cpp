#include "kalimkit/tool/HandleReach.h"

#include <gtest/gtest.h>

namespace kalim::test {

TEST(HandleReach, LeavesTheMiddleThirdOfABoxToItsBody) {
    using enum MoveDirection;
    const gfx::Rect box(100, 100, 30, 60);
    struct Case {
        gfx::Point p;
        MoveDirection corner;
        bool isWithin;
    };
    const Case cases[] = {
        {{110, 120}, TopLeft, true},      {{111, 120}, TopLeft, false},
        {{110, 121}, TopLeft, false},     {{60, 60}, TopLeft, true},
        {{120, 120}, TopRight, true},     {{119, 120}, TopRight, false},
        {{140, 141}, BottomRight, true},  {{140, 139}, BottomRight, false},
        {{110, 140}, BottomLeft, true},   {{115, 180}, BottomLeft, false},
        {{115, 130}, BottomRight, false}, {{115, 130}, Body, true},
    };
    for (const Case& each : cases)
        EXPECT_EQ(isWithinThirdsOfCorner(each.p, each.corner, box), each.isWithin)
            << each.p.x << " " << each.p.y;
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

}  // namespace kalim::test
