#include "kalimkit/imageedit/crop/CropDrag.h"

#include <gtest/gtest.h>

namespace kalim {
namespace {

const gfx::Rect frame(100, 200, 200, 300);
const gfx::Rect content(20, 50, 350, 600);

gfx::Rect dragged(CropEdge edge, gfx::Point by, bool isLocked, const gfx::Rect& from) {
    const CropDrag drag{edge, {7, 9}, from, content, isLocked};
    return drag.frameAt(gfx::Point{7, 9} + by, from);
}

TEST(CropDrag, EachEdgeMovesAloneWithinTheContentAndStopsAtTheShortestSide) {
    const struct {
        CropEdge edge;
        gfx::Point by;
        gfx::Rect expected;
    } cases[] = {
        {CropEdge::None, {50, 50}, frame},
        {CropEdge::Left, {30, 99}, {130, 200, 170, 300}},
        {CropEdge::Left, {-200, 0}, {20, 200, 280, 300}},
        // Past the right edge: the shortest width, ending where it ended.
        {CropEdge::Left, {190, 0}, {240, 200, 60, 300}},
        {CropEdge::Left, {500, 0}, {240, 200, 60, 300}},
        {CropEdge::Right, {-180, 0}, {100, 200, 60, 300}},
        {CropEdge::Right, {200, 0}, {100, 200, 270, 300}},
        // Whole points, upwards.
        {CropEdge::Bottom, {0, 0.2}, {100, 200, 200, 301}},
        {CropEdge::BottomRight, {-0.5, -0.5}, frame},
        {CropEdge::Top, {0, -400}, {100, 50, 200, 450}},
        {CropEdge::TopLeft, {10, 20}, {110, 220, 190, 280}},
        {CropEdge::TopRight, {10, 20}, {100, 220, 210, 280}},
        {CropEdge::BottomLeft, {10, 20}, {110, 200, 190, 320}},
    };
    for (const auto& [edge, by, expected] : cases) {
        EXPECT_EQ(dragged(edge, by, false, frame), expected)
            << static_cast<int>(edge) << " by " << by.x << ", " << by.y;
    }
}

TEST(CropDrag, WithTheAspectLockedTheFrameIsASquareFromTheOppositeCorner) {
    EXPECT_EQ(dragged(CropEdge::BottomRight, {20, 30}, true, frame), gfx::Rect(100, 200, 220, 220));
    EXPECT_EQ(dragged(CropEdge::TopLeft, {-20, -30}, true, frame), gfx::Rect(80, 280, 220, 220));
    const gfx::Rect square(100, 200, 200, 200);
    EXPECT_EQ(dragged(CropEdge::Left, {20, 0}, true, square), gfx::Rect(120, 200, 180, 180));
    EXPECT_EQ(dragged(CropEdge::Bottom, {0, -40}, true, square), gfx::Rect(100, 200, 160, 160));
}

TEST(CropDrag, CornersComeFirstAndTheTopIsEasierToGrabThanTheOtherEdges) {
    const struct {
        gfx::Point p;
        CropEdge edge;
        bool isOnBorder;
    } cases[] = {
        {{100, 200}, CropEdge::TopLeft, true},      {{169, 269}, CropEdge::TopLeft, false},
        {{171, 200}, CropEdge::Top, true},          {{235, 180}, CropEdge::TopRight, true},
        {{250, 450}, CropEdge::BottomRight, false}, {{120, 520}, CropEdge::BottomLeft, false},
        {{319, 350}, CropEdge::Right, true},        {{321, 350}, CropEdge::None, false},
        {{115, 350}, CropEdge::Left, true},         {{200, 515}, CropEdge::Bottom, true},
        {{200, 150}, CropEdge::Top, false},         {{200, 550}, CropEdge::None, false},
        {{200, 350}, CropEdge::None, false},
    };
    for (const auto& [p, edge, isOnBorder] : cases) {
        EXPECT_EQ(cropEdgeForPoint(p, frame), edge) << p.x << ", " << p.y;
        EXPECT_EQ(isOnCropBorder(p, frame), isOnBorder) << p.x << ", " << p.y;
    }
}

}  // namespace
}  // namespace kalim
