#include "kalimkit/crop/CropDrag.h"

#include <gtest/gtest.h>

namespace kalim {
namespace {

const gfx::Rect frame(100, 200, 200, 300);
const gfx::Rect content(20, 50, 350, 600);

gfx::Rect dragged(CropEdge edge, gfx::Point by, bool isLocked, const gfx::Rect& from) {
    const CropDrag drag{edge, {7, 9}, from, content, isLocked, {}, {}};
    return drag.frameAt(gfx::Point{7, 9} + by, from);
}

TEST(CropDrag, WithTheAspectLockedTheFrameIsASquareFromTheOppositeCorner) {
    EXPECT_EQ(dragged(CropEdge::BottomRight, {20, 30}, true, frame), gfx::Rect(100, 200, 220, 220));
    EXPECT_EQ(dragged(CropEdge::TopLeft, {-20, -30}, true, frame), gfx::Rect(80, 280, 220, 220));
    const gfx::Rect square(100, 200, 200, 200);
    // An edge takes the others along, about the middle as far as the content allows.
    EXPECT_EQ(dragged(CropEdge::Left, {20, 0}, true, square), gfx::Rect(120, 210, 180, 180));
    EXPECT_EQ(dragged(CropEdge::Left, {-60, 0}, true, square), gfx::Rect(40, 170, 260, 260));
    EXPECT_EQ(dragged(CropEdge::Bottom, {0, -40}, true, square), gfx::Rect(120, 200, 160, 160));
    EXPECT_EQ(dragged(CropEdge::Bottom, {0, 130}, true, square), gfx::Rect(35, 200, 330, 330));
    EXPECT_EQ(dragged(CropEdge::Top, {0, -400}, true, square), gfx::Rect(20, 50, 350, 350));
}

TEST(CropDrag, GoesNoFurtherIntoAPictureThanTheLargestZoomAndSixteenPixels) {
    // Of a square picture that is 350 points wide at a zoom of 1.
    const auto square = [](int pixels, double zoom) {
        return CropPicture{{350, 350}, {pixels, pixels}, zoom};
    };
    const gfx::Rect whole(20, 175, 350, 350);
    const gfx::Rect thin(20, 340, 350, 20);
    const struct {
        CropPicture picture;
        gfx::Rect from;
        CropEdge edge;
        gfx::Point by;
        gfx::Size expected;
    } cases[] = {
        // A frame that is not as high as 600 * 10 / 15 has to be 350 * 10 / 15 wide.
        {square(3500, 10), whole, CropEdge::Right, {-999, 0}, {700 / 3., 350}},
        {square(3500, 10), whole, CropEdge::TopLeft, {999, 999}, {700 / 3., 60}},
        {square(3500, 4), whole, CropEdge::Right, {-999, 0}, {60, 350}},
        // 16 pixels of 7 points, and of 14.
        {square(50, 1), whole, CropEdge::BottomRight, {-999, -999}, {112, 112}},
        {square(50, 2), whole, CropEdge::Top, {0, 999}, {350, 224}},
        // A frame beyond the picture zooms it; 20 / 1.25 pixels are left across.
        {square(20, 1), whole, CropEdge::Bottom, {0, 999}, {350, 437.5}},
        {square(18, 1), whole, CropEdge::Bottom, {0, 999}, {350, 350 * 18 / 16.}},
        {{{350, 20}, {700, 40}, 1}, thin, CropEdge::Top, {0, -290}, {350, 300}},
        // What there is of it is less already: it stays, and so does a short side.
        {square(10, 1), whole, CropEdge::TopRight, {-50, 50}, {350, 350}},
        {square(10, 1), whole, CropEdge::Top, {0, -50}, {350, 350}},
        {{{350, 20}, {700, 40}, 1}, thin, CropEdge::Left, {99, 0}, {251, 20}},
        {{{350, 20}, {7000, 400}, 1}, thin, CropEdge::Bottom, {0, -9}, {350, 20}},
    };
    for (const auto& [picture, from, edge, by, expected] : cases) {
        const CropLimits limits = CropLimits::from(cropOutcome(picture, from.size, content.size));
        const CropDrag drag{edge, {7, 9}, from, content, false, picture, limits};
        gfx::Rect frame = drag.frameAt(gfx::Point{7, 9} + by, from);
        EXPECT_NEAR(frame.size.width, expected.width, 1e-6) << by.x << ", " << by.y;
        EXPECT_NEAR(frame.size.height, expected.height, 1e-6) << by.x << ", " << by.y;
        // Many small steps lead there, too.
        frame = from;
        for (int step = 1; step <= 200; ++step)
            frame = drag.frameAt(gfx::Point{7, 9} + by * (step / 200.), frame);
        EXPECT_NEAR(frame.size.width, expected.width, 5) << by.x << ", " << by.y;
        EXPECT_NEAR(frame.size.height, expected.height, 5) << by.x << ", " << by.y;
    }
}

TEST(CropDrag, CornersComeFirstAndTheTopIsEasierToGrabThanTheOtherEdges) {
    const struct {
        gfx::Point p;
        CropEdge edge;
        bool isOnBorder;
    } cases[] = {
        {{100, 200}, CropEdge::TopLeft, true},      {{166, 269}, CropEdge::TopLeft, false},
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
    // A third of a short side is left to the edge.
    const gfx::Rect small(100, 200, 60, 90);
    EXPECT_EQ(cropEdgeForPoint({119, 229}, small), CropEdge::TopLeft);
    EXPECT_EQ(cropEdgeForPoint({130, 200}, small), CropEdge::Top);
    EXPECT_EQ(cropEdgeForPoint({100, 245}, small), CropEdge::Left);
}

}  // namespace
}  // namespace kalim
