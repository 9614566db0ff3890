#include "kalimkit/shapes/MDrawLine.h"

#include <gtest/gtest.h>

#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/shapes/MeasureText.h"
#include "tests/support/RecordingContext.h"

namespace kalim {
namespace {

std::shared_ptr<MDrawLine> lineBetween(gfx::Point start, gfx::Point end) {
    const auto line = MDrawLine::initWithStartPoint(start);
    line->setEndPoint(end);
    line->setLineWidth(4);
    return line;
}

TEST(MDrawLine, IsValidAboveFivePoints) {
    EXPECT_FALSE(lineBetween({0, 0}, {3, 4})->isDrawVaild());
    EXPECT_TRUE(lineBetween({0, 0}, {5.01, 0})->isDrawVaild());
}

TEST(MDrawLine, KeepsTheEndOfItsLastMoveOnceFinalized) {
    const auto line = MDrawLine::initWithStartPoint({10, 10});
    line->drawMove({50, 10});
    line->drawUp({60, 10});
    EXPECT_EQ(line->endPoint(), (gfx::Point{60, 10}));
    EXPECT_TRUE(line->finalized());
    line->drawMove({70, 10});
    line->drawUp({80, 10});
    EXPECT_EQ(line->endPoint(), (gfx::Point{70, 10}));

    const auto tooShort = MDrawLine::initWithStartPoint({10, 10});
    tooShort->drawUp({12, 10});
    EXPECT_FALSE(tooShort->finalized());
}

TEST(MDrawLine, AShortLineIsCorrectedInXOnly) {
    const auto line = lineBetween({10, 10}, {10, 13});
    line->limitValidFeatrue();
    EXPECT_EQ(line->endPoint(), (gfx::Point{16, 13}));
    const auto justBegun = MDrawLine::initWithStartPoint({10, 10});
    justBegun->limitValidFeatrue();
    EXPECT_EQ(justBegun->endPoint(), (gfx::Point{10, 10}));
}

TEST(MDrawLine, IsHitWithinItsMarginAndNotFarPastItsEnds) {
    const auto line = lineBetween({100, 100}, {200, 100});
    // Half the width plus 8.
    EXPECT_TRUE(line->hitTest({150, 110}));
    EXPECT_FALSE(line->hitTest({150, 110.1}));
    EXPECT_TRUE(line->hitTest({208, 100}));
    EXPECT_FALSE(line->hitTest({208.01, 100}));
    EXPECT_TRUE(line->hitTest({92, 100}));
    EXPECT_FALSE(line->hitTest({91.9, 100}));
}

TEST(MDrawLine, HandlesComeBeforeTheBodyAndTheStartBeforeTheEnd) {
    const auto line = lineBetween({100, 100}, {110, 100});
    EXPECT_TRUE(line->hitOnHandle({105, 100}));
    EXPECT_EQ(line->moveDirection(), MoveDirection::Start);
    line->setEndPoint({200, 100});
    EXPECT_TRUE(line->testHitOnHandle({200, 100}));
    EXPECT_EQ(line->moveDirection(), MoveDirection::Start);
    EXPECT_TRUE(line->hitOnHandle({200, 100}));
    EXPECT_EQ(line->moveDirection(), MoveDirection::End);
    EXPECT_TRUE(line->hitOnHandle({150, 100}));
    EXPECT_EQ(line->moveDirection(), MoveDirection::Body);
    EXPECT_FALSE(line->hitOnHandle({150, 150}));
    EXPECT_EQ(line->moveDirection(), MoveDirection::None);
}

TEST(MDrawLine, ADragMovesOnlyWhatWasGrabbed) {
    const auto line = lineBetween({0, 0}, {100, 0});
    line->setMoveDirection(MoveDirection::End);
    line->tryMovePointEndPoint({100, 0}, {90, 30});
    EXPECT_EQ(line->startPoint(), (gfx::Point{0, 0}));
    EXPECT_EQ(line->endPoint(), (gfx::Point{90, 30}));
    line->setMoveDirection(MoveDirection::GroupedLine);
    line->tryMovePointEndPoint({0, 0}, {10, 10});
    EXPECT_EQ(line->endPoint(), (gfx::Point{90, 30}));
    line->stopMoveHandle();
    EXPECT_EQ(line->moveDirection(), MoveDirection::None);
}

TEST(MDrawLine, MeasuresItsLengthWithASpaceBeforeTheColon) {
    resetMeasureLabels();
    const auto line = lineBetween({0, 0}, {60, 80});
    EXPECT_EQ(line->measureText(), "Length : 100.00 px");
    line->setCalibration(0.5);
    line->setUnit("mm");
    EXPECT_EQ(line->measureText(), "Length : 0.05 mm");
}

TEST(MDrawFatArrow, TakesItsShapeFromItsLengthAlone) {
    const auto arrow = MDrawFatArrow::initWithStartPoint({100, 100});
    arrow->setEndPoint({100, 200});
    arrow->setColor(gfx::makeColor(1, 0, 0));
    test::RecordingContext context;
    arrow->draw(context);
    // The tip at the start, the tail straight below; one fill, and a stroke that finds no path.
    ASSERT_EQ(context.lines().size(), 1u);
    EXPECT_EQ(context.lines()[0],
              "fill [M 100,100 L 60,160 L 85,160 L 85,200 L 115,200 L 115,160 L 140,160 Z] "
              "#FF0000FF shadow=(0,1) blur=3 #0000004D");
    context.takeLines();
    arrow->setSelected(true);
    arrow->draw(context);
    // What follows the content keeps its shadow, the handles included.
    EXPECT_NE(context.lines().back().find("shadow=(0,1) blur=3"), std::string::npos);
    // The frame of a straight arrow has no width, so it is only caught by its handles.
    EXPECT_FALSE(arrow->hitTest({100, 150}));
    EXPECT_TRUE(arrow->testHitOnHandle({100, 200}));
    EXPECT_EQ(arrow->measureText(), "Length : 100.00 px");
}

}  // namespace
}  // namespace kalim
