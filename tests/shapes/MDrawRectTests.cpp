#include "kalimkit/shapes/MDrawRect.h"

#include <gtest/gtest.h>

#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawRoundedRect.h"
#include "kalimkit/shapes/MeasureText.h"
#include "tests/support/RecordingContext.h"

namespace kalim {
namespace {

template <typename Box = MDrawRect>
std::shared_ptr<Box> boxBetween(gfx::Point start, gfx::Point end, double width = 2) {
    const auto box = Box::initWithStartPoint(start);
    box->setEndPoint(end);
    box->setLineWidth(width);
    box->setColor(gfx::makeColor(1, 0, 0));
    box->setIsNewBuild(false);
    return box;
}

TEST(MDrawRect, IsValidFromTwentyPointsOfDiagonal) {
    EXPECT_FALSE(boxBetween({0, 0}, {19, 0})->isDrawVaild());
    EXPECT_TRUE(boxBetween({0, 0}, {12, 16})->isDrawVaild());
    EXPECT_FALSE(boxBetween({9, 9}, {9, 9})->isDrawVaild());
}

TEST(MDrawRect, AThinBoxIsWidenedTowardsTheSideItWasDraggedTo) {
    const auto down = boxBetween({0, 0}, {100, 2}, 7);
    down->limitValidFeatrue();
    EXPECT_EQ(down->endPoint(), (gfx::Point{100, 11}));
    const auto up = boxBetween({0, 0}, {100, -2}, 7);
    up->limitValidFeatrue();
    EXPECT_EQ(up->endPoint(), (gfx::Point{100, -11}));
    const auto thinLeft = boxBetween({0, 0}, {-9, 100}, 7);
    thinLeft->limitValidFeatrue();
    EXPECT_EQ(thinLeft->endPoint(), (gfx::Point{-11, 100}));
    const auto wideEnough = boxBetween({0, 0}, {100, 10}, 7);
    wideEnough->limitValidFeatrue();
    EXPECT_EQ(wideEnough->endPoint(), (gfx::Point{100, 10}));
}

TEST(MDrawRect, ATinyNewBoxIsLeftInvalidUnlessTheWidthAloneMakesItLargeEnough) {
    const auto tiny = MDrawRect::initWithStartPoint({0, 0});
    tiny->setLineWidth(7);
    tiny->drawMove({3, 4});
    tiny->drawUp({3, 4});
    EXPECT_FALSE(tiny->isDrawVaild());
    EXPECT_TRUE(tiny->finalized());
    // Width 28 moves the end to x = 30, which is valid, and so both sides are made 32 long.
    const auto thick = MDrawRect::initWithStartPoint({0, 0});
    thick->setLineWidth(28);
    thick->drawUp({3, 4});
    EXPECT_EQ(thick->endPoint(), (gfx::Point{32, 32}));
}

TEST(MDrawRect, AnOutlineIsHitInABandAndAFilledBoxAllOver) {
    const auto box = boxBetween({0, 0}, {100, 100});
    EXPECT_TRUE(box->hitTest({-7, 50}));
    EXPECT_FALSE(box->hitTest({-7.1, 50}));
    EXPECT_TRUE(box->hitTest({6.9, 50}));
    EXPECT_FALSE(box->hitTest({50, 50}));
    box->setDrawType(1);
    EXPECT_TRUE(box->hitTest({50, 50}));
    // 10 is less than 7 + 5: a small box is hit all over.
    EXPECT_TRUE(boxBetween({0, 0}, {10, 10})->hitTest({5, 5}));
}

TEST(MDrawRect, HandleTestsNormaliseTheCornersFirst) {
    const auto box = boxBetween({200, 150}, {100, 50});
    EXPECT_TRUE(box->testHitOnHandle({100, 50}));
    EXPECT_EQ(box->startPoint(), (gfx::Point{100, 50}));
    EXPECT_EQ(box->endPoint(), (gfx::Point{200, 150}));
    struct Case {
        gfx::Point at;
        MoveDirection direction;
    };
    const Case cases[] = {
        {{100, 50}, MoveDirection::TopLeft},      {{200, 50}, MoveDirection::TopRight},
        {{200, 150}, MoveDirection::BottomRight}, {{100, 150}, MoveDirection::BottomLeft},
        {{150, 50}, MoveDirection::Body},         {{150, 100}, MoveDirection::None}};
    for (const Case& expected : cases) {
        EXPECT_EQ(box->hitOnHandle(expected.at), expected.direction != MoveDirection::None);
        EXPECT_EQ(box->moveDirection(), expected.direction)
            << expected.at.x << "," << expected.at.y;
    }
}

TEST(MDrawRect, EachHandleMovesItsOwnCoordinates) {
    struct Case {
        MoveDirection direction;
        gfx::Point start;
        gfx::Point end;
    };
    const Case cases[] = {{MoveDirection::Body, {3, 5}, {103, 105}},
                          {MoveDirection::TopLeft, {3, 5}, {100, 100}},
                          {MoveDirection::Top, {0, 5}, {100, 100}},
                          {MoveDirection::TopRight, {0, 5}, {103, 100}},
                          {MoveDirection::Right, {0, 0}, {103, 100}},
                          {MoveDirection::BottomRight, {0, 0}, {103, 105}},
                          {MoveDirection::Bottom, {0, 0}, {100, 105}},
                          {MoveDirection::BottomLeft, {3, 0}, {100, 105}},
                          {MoveDirection::Left, {3, 0}, {100, 100}},
                          {MoveDirection::GroupedLine, {0, 0}, {100, 100}}};
    for (const Case& expected : cases) {
        const auto box = boxBetween({0, 0}, {100, 100});
        box->setMoveDirection(expected.direction);
        box->tryMovePointEndPoint({50, 50}, {53, 55});
        EXPECT_EQ(box->startPoint(), expected.start) << static_cast<unsigned>(expected.direction);
        EXPECT_EQ(box->endPoint(), expected.end) << static_cast<unsigned>(expected.direction);
    }
}

TEST(MDrawRect, StylesOutlineOrFillAndTheThirdOnlyOutlines) {
    const auto kindsDrawn = [](MDrawRect& box, std::uint64_t style) {
        box.setDrawType(style);
        test::RecordingContext context;
        box.draw(context);
        std::string kinds;
        for (const std::string& line : context.lines())
            kinds += line.substr(0, line.find(' ')) + ";";
        return kinds;
    };
    for (const std::shared_ptr<MDrawRect>& box :
         {boxBetween({0, 0}, {100, 100}),
          std::static_pointer_cast<MDrawRect>(boxBetween<MDrawEllipse>({0, 0}, {100, 100}))}) {
        EXPECT_EQ(kindsDrawn(*box, 0), "stroke;");
        EXPECT_EQ(kindsDrawn(*box, 1), "fill;");
        EXPECT_EQ(kindsDrawn(*box, 2), "stroke;");
        EXPECT_EQ(kindsDrawn(*box, 3), "");
    }
}

TEST(MDrawRect, MeasuresBothSidesAndTheArea) {
    resetMeasureLabels();
    const auto box = boxBetween({100, 60}, {0, 0});
    EXPECT_EQ(box->measureText(), "Width: 100.00 px\nHeight: 60.00 px\nArea: 6000.00 sqpx");
    box->setCalibration(2);
    box->setUnit("um");
    EXPECT_EQ(box->measureText(), "Width: 200.00 um\nHeight: 120.00 um\nArea: 24000.00 squm");
}

TEST(MDrawRoundedRect, DrawsCornersOfFifteenPointsUnclamped) {
    const auto box = boxBetween<MDrawRoundedRect>({0, 0}, {100, 50});
    test::RecordingContext context;
    box->draw(context);
    ASSERT_EQ(context.lines().size(), 1u);
    EXPECT_EQ(context.lines()[0].rfind("stroke [M 15,0 L 85,0 L 85,0 C ", 0), 0u)
        << context.lines()[0];
    EXPECT_NE(context.lines()[0].find("L 100,35 "), std::string::npos) << context.lines()[0];
    EXPECT_NE(context.lines()[0].find("L 30,50 L 15,50 "), std::string::npos) << context.lines()[0];
}

TEST(MDrawEllipse, IgnoresMovesThatWouldFlattenIt) {
    const auto ellipse = MDrawEllipse::initWithStartPoint({50, 50});
    ellipse->drawMove({90, 52});
    EXPECT_EQ(ellipse->endPoint(), (gfx::Point{50, 50}));
    ellipse->drawMove({90, 80});
    ellipse->drawMove({48, 90});
    EXPECT_EQ(ellipse->endPoint(), (gfx::Point{90, 80}));
}

TEST(MDrawEllipse, IsHitByItsBoxAndNotByItsCurve) {
    const auto ellipse = boxBetween<MDrawEllipse>({0, 0}, {100, 40});
    EXPECT_TRUE(ellipse->hitTest({-6, -6}));
    EXPECT_FALSE(ellipse->hitTest({-6.1, 20}));
    EXPECT_TRUE(ellipse->hitTest({24, 20}));
    EXPECT_FALSE(ellipse->hitTest({26, 20}));
    ellipse->setDrawType(1);
    EXPECT_TRUE(ellipse->hitTest({50, 20}));
    const auto flat = boxBetween<MDrawEllipse>({0, 0}, {100, 12});
    EXPECT_TRUE(flat->hitTest({50, 6}));
    EXPECT_FALSE(flat->hitTest({50, -3}));
}

TEST(MDrawEllipse, IsMeasuredAsACircleOfHalfItsWidth) {
    resetMeasureLabels();
    const std::string expected = "Radius: 50.00 px\nArea: 7853.98 sqpx\nPerimeter: 314.16 px";
    EXPECT_EQ(boxBetween<MDrawEllipse>({0, 0}, {100, 10})->measureText(), expected);
    EXPECT_EQ(boxBetween<MDrawEllipse>({100, 100}, {0, 0})->measureText(), expected);
}

}  // namespace
}  // namespace kalim
