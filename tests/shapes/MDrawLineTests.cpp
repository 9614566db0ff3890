#include "kalimkit/shapes/MDrawLine.h"

#include <gtest/gtest.h>

#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "tests/support/RecordingContext.h"

namespace kalim {
namespace {

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
}

TEST(MDrawEllipse, IgnoresMovesThatWouldFlattenIt) {
    const auto ellipse = MDrawEllipse::initWithStartPoint({50, 50});
    ellipse->drawMove({90, 52});
    EXPECT_EQ(ellipse->endPoint(), (gfx::Point{50, 50}));
    ellipse->drawMove({90, 80});
    ellipse->drawMove({48, 90});
    EXPECT_EQ(ellipse->endPoint(), (gfx::Point{90, 80}));
}

}  // namespace
}  // namespace kalim
