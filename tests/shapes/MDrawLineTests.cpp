#include "kalimkit/shapes/MDrawLine.h"

#include <gtest/gtest.h>

#include <numbers>

#include "kalimkit/shapes/MDrawArrow.h"
#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/shapes/outline/ArrowOutline.h"
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
}

std::shared_ptr<MDrawArrow> arrowBetween(gfx::Point start, gfx::Point end, double width = 2) {
    const auto arrow = MDrawArrow::initWithStartPoint(start);
    arrow->setEndPoint(end);
    arrow->setLineWidth(width);
    arrow->setColor(gfx::makeColor(1, 0, 0));
    return arrow;
}

TEST(MDrawArrow, TheTailFollowsTheFivePensAndCollapsesForOtherWidths) {
    for (const auto& [width, tail] :
         {std::pair{2.0, 2.0}, {7, 3}, {12, 4}, {18, 4.5}, {28, 5}, {8, 0}, {2.5, 0}})
        EXPECT_EQ(arrowBetween({}, {}, width)->getTailWidth(), tail) << width;
}

TEST(MDrawArrow, TheOutlineTapersFromTheNotchToTheRoundTail) {
    const gfx::Path outline = arrowOutline(100, 7, 2);
    EXPECT_EQ(outline.points()[1], (gfx::Point{14, -7}));
    // 0.8 * sqrt(5) * 7 = 12.522, turned by half the head's half-angle.
    EXPECT_NEAR(outline.points()[2].x, 12.187, 0.001);
    EXPECT_NEAR(outline.points()[2].y, -2.877, 0.001);
    EXPECT_EQ(outline.points()[3], (gfx::Point{99, -1}));
    EXPECT_NEAR(outline.boundingBox().maxX(), 100, 1e-9);
    EXPECT_NEAR(outline.boundingBox().maxY(), 7, 1e-9);
}

TEST(MDrawArrow, AReleaseKeepsMoreThanValidityAsksFor) {
    using enum MoveDirection;
    for (const auto& [moved, start, end] :
         {std::tuple{End, 0, 44}, {Start, -14, 30}, {None, 0, 30}}) {
        const auto arrow = arrowBetween({0, 0}, {0, 30});
        arrow->setMoveDirection(moved);
        arrow->stopMoveHandle();
        EXPECT_NEAR(arrow->startPoint().y, start, 1e-9);
        EXPECT_NEAR(arrow->endPoint().y, end, 1e-9);
    }
}

TEST(MDrawArrow, IsFilledWithAShadowAndOutlinedWithoutOneWhenSelected) {
    const auto arrow = arrowBetween({100, 0}, {0, 0});
    arrow->setSelected(true);
    arrow->setIsMutableTool(true);
    test::RecordingContext context;
    arrow->draw(context);
    ASSERT_EQ(context.lines().size(), 2u);
    EXPECT_EQ(context.lines()[0].rfind("fill [M 0,0 L 14,-7 ", 0), 0u) << context.lines()[0];
    EXPECT_NE(context.lines()[0].find("shadow=(1,1) blur=2 #00000059"), std::string::npos);
    EXPECT_EQ(context.lines()[1].rfind("stroke [M 0,0 L 14,-7 ", 0), 0u) << context.lines()[1];
    EXPECT_NE(context.lines()[1].find("#70D0FFFF width=2"), std::string::npos);
    EXPECT_EQ(context.lines()[1].find("shadow"), std::string::npos);
}

TEST(MDrawArrow, RotationTurnsItsPointsByTheGesturesTotalAngle) {
    const auto arrow = arrowBetween({0, 50}, {100, 50});
    const double quarter = std::numbers::pi / 2;
    arrow->rotateChangedWithAngle(quarter / 2);
    arrow->rotateChangedWithAngle(quarter);
    arrow->rotateEndedWithAngle(quarter);
    EXPECT_NEAR(arrow->startPoint().x, 50, 1e-9);
    EXPECT_NEAR(arrow->startPoint().y, 0, 1e-9);
    EXPECT_NEAR(arrow->endPoint().y, 100, 1e-9);
    // The next gesture begins at zero again.
    arrow->rotateChangedWithAngle(quarter);
    EXPECT_NEAR(arrow->startPoint().x, 100, 1e-9);
    EXPECT_NEAR(arrow->startPoint().y, 50, 1e-9);
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
