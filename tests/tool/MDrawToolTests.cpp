#include "kalimkit/tool/MDrawTool.h"

#include <gtest/gtest.h>

#include <numbers>
#include <tuple>

#include "kalimkit/shapes/MDrawLine.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "tests/support/RecordingContext.h"

namespace kalim {
namespace {

TEST(MDrawTool, OnlyTheFirstToolOfTheProcessGetsIndexZero) {
    MDrawTool::resetNames();
    EXPECT_EQ(MDrawLine::initWithStartPoint({})->name(), "MDrawLine:Index:0");
    EXPECT_EQ(MDrawRect::initWithStartPoint({})->name(), "MDrawRect:Index:1");
    EXPECT_EQ(MDrawLine::initWithStartPoint({})->name(), "MDrawLine:Index:1");
    EXPECT_EQ(MDrawRect::initWithStartPoint({})->name(), "MDrawRect:Index:2");
}

TEST(MDrawTool, HandlesKeepTheirSizeOnScreen) {
    const std::tuple<double, double, int, int> cases[] = {
        {8, 1, 14, 2},   {31, 1, 16, 2}, {30, 1, 14, 2},   {31, 4, 4, 1},
        {8, 0.5, 28, 2}, {8, 2, 7, 1},   {31, 0.5, 32, 2}, {8, 1.5, 9, 1}};
    const auto tool = MDrawLine::initWithStartPoint({});
    for (const auto& [lineWidth, viewScale, size, outline] : cases) {
        tool->setLineWidth(lineWidth);
        tool->setHandleViewScale(viewScale);
        EXPECT_EQ(tool->handleSize(), size) << lineWidth << "@" << viewScale;
        EXPECT_EQ(tool->handleLineWidthSize(), outline) << lineWidth << "@" << viewScale;
    }
}

TEST(MDrawTool, HandleTargetsGrowWithThickStrokesAndShrinkWithTheZoom) {
    const auto tool = MDrawLine::initWithStartPoint({});
    // 14 + 28 wide, from -7 - 14 on; the far edge is outside.
    EXPECT_TRUE(tool->isPointOnHandle({-21, 0}, {0, 0}));
    EXPECT_TRUE(tool->isPointOnHandle({20.9, 0}, {0, 0}));
    EXPECT_FALSE(tool->isPointOnHandle({21, 0}, {0, 0}));
    // Width 28: 14 + 42, from -7 - 21 on.
    tool->setLineWidth(28);
    EXPECT_TRUE(tool->isPointOnHandle({-28, 0}, {0, 0}));
    EXPECT_FALSE(tool->isPointOnHandle({-28.1, 0}, {0, 0}));
    // Zoomed to 2: the handle is 7, its half 3, the extension 42 / 2.
    tool->setHandleViewScale(2);
    EXPECT_TRUE(tool->isPointOnHandle({-13.5, 0}, {0, 0}));
    EXPECT_FALSE(tool->isPointOnHandle({-13.6, 0}, {0, 0}));
}

TEST(MDrawTool, SnapshotsRestoreInSinglePrecisionAndDropAMissingColour) {
    const auto tool = MDrawLine::initWithStartPoint({1, 2});
    tool->setColor(gfx::makeColor(1, 0, 0));
    tool->rotateEndedWithAngle(0.1);
    tool->setLineWidth(0.1);
    const auto recorded = std::make_shared<const Feature>(tool->getFeature());
    tool->setLineWidth(5);
    tool->rotateEndedWithAngle(0.4);
    tool->setStartPoint({7, 7});
    tool->setFeature(recorded);
    EXPECT_EQ(tool->lineWidth(), static_cast<double>(0.1F));
    EXPECT_EQ(tool->rotateAngle(), static_cast<double>(0.1F));
    EXPECT_DOUBLE_EQ(tool->lastRotateAngle(), 0.5);
    EXPECT_EQ(tool->startPoint(), (gfx::Point{1, 2}));
    EXPECT_TRUE(tool->color());

    tool->setFeature(std::make_shared<const Feature>());
    EXPECT_FALSE(tool->color());
    EXPECT_EQ(tool->startPoint(), (gfx::Point{1, 2}));
    tool->setFeature(nullptr);
    EXPECT_EQ(tool->lineWidth(), static_cast<double>(0.1F));
}

// A quarter turn about (100, 100) maps the box 50..150 x 80..120 to 80..120 x 50..150.
std::shared_ptr<MDrawRect> quarterTurnedBox() {
    const auto box = MDrawRect::initWithStartPoint({50, 80});
    box->setEndPoint({150, 120});
    box->setColor(gfx::makeColor(0, 0, 1));
    box->setIsNewBuild(false);
    box->rotateEndedWithAngle(std::numbers::pi / 2);
    test::RecordingContext context;
    box->draw(context);
    return box;
}

TEST(MDrawTool, ATurnedBoxIsHitWhereItIsSeenAndKeepsTheCornerOppositeOfTheDragged) {
    const auto box = quarterTurnedBox();
    EXPECT_TRUE(box->hitTest({100, 50}) && box->hitTest({80, 100}));
    EXPECT_FALSE(box->hitTest({55, 100}));
    const gfx::Rect extent = box->frameIncludeLineWidth();
    EXPECT_NEAR(extent.minX(), 76, 1e-9);
    EXPECT_NEAR(extent.maxY(), 154, 1e-9);
    // The box's top-left corner is seen at (120, 50), its bottom-right one at (80, 150).
    ASSERT_TRUE(box->hitOnHandle({80, 150}));
    ASSERT_EQ(box->moveDirection(), MoveDirection::BottomRight);
    box->tryMovePointEndPoint({80, 150}, {70, 170});
    test::RecordingContext context;
    box->draw(context);
    const gfx::Point topLeft = box->transform().apply(box->startPoint());
    const gfx::Point bottomRight = box->transform().apply(box->endPoint());
    EXPECT_NEAR(topLeft.x, 120, 1e-9);
    EXPECT_NEAR(topLeft.y, 50, 1e-9);
    EXPECT_NEAR(bottomRight.x, 70, 1e-9);
    EXPECT_NEAR(bottomRight.y, 170, 1e-9);
}

TEST(MDrawTool, TheBodyOfATurnedBoxFollowsTheFingerAndOneTooSmallStepsBackByTheUnrotatedDelta) {
    const auto box = quarterTurnedBox();
    box->setMoveDirection(MoveDirection::Body);
    box->tryMovePointEndPoint({100, 50}, {110, 45});
    EXPECT_EQ(box->startPoint(), (gfx::Point{60, 75}));
    EXPECT_EQ(box->endPoint(), (gfx::Point{160, 115}));
    box->setEndPoint({65, 80});
    box->tryMovePointEndPoint({100, 50}, {110, 50});
    // Forward by (10, 0), back by that turned to (0, -10).
    EXPECT_NEAR(box->startPoint().x, 70, 1e-9);
    EXPECT_NEAR(box->startPoint().y, 85, 1e-9);
}

TEST(MDrawTool, AStepThatWouldMakeAShapeInvalidIsTakenBack) {
    const auto line = MDrawLine::initWithStartPoint({0, 0});
    line->setEndPoint({20, 0});
    line->setMoveDirection(MoveDirection::End);
    line->tryMovePointEndPoint({20, 0}, {3, 0});
    EXPECT_NEAR(line->endPoint().x, 20, 1e-9);

    line->setMoveDirection(MoveDirection::Scale);
    line->setCenterPoint({10, 0});
    line->setZoomScale(0.1);
    line->tryMovePointEndPoint({20, 0}, {11, 0});
    EXPECT_EQ(line->startPoint(), (gfx::Point{0, 0}));
    EXPECT_EQ(line->endPoint(), (gfx::Point{20, 0}));
}

TEST(MDrawTool, ASelectedShapeIsOverdrawnAndShowsItsHandlesUnlessGrouped) {
    const auto line = MDrawLine::initWithStartPoint({0, 0});
    line->setEndPoint({50, 0});
    line->setColor(gfx::makeColor(1, 0, 0));
    test::RecordingContext context;
    line->draw(context);
    EXPECT_EQ(context.takeLines().size(), 1u);
    line->setSelected(true);
    line->draw(context);
    // The line, the line in the selection colour, two handles filled and outlined.
    const std::vector<std::string> selected = context.takeLines();
    ASSERT_EQ(selected.size(), 6u);
    EXPECT_NE(selected[1].find("#70D0FFFF width=2"), std::string::npos) << selected[1];
    EXPECT_NE(selected[2].find("#24A9E9FF"), std::string::npos) << selected[2];
    EXPECT_NE(selected[3].find("#FFFFFFFF width=2"), std::string::npos) << selected[3];
    line->setIsMutableTool(true);
    line->draw(context);
    EXPECT_EQ(context.takeLines().size(), 2u);
    line->setEndPoint({4, 0});
    line->draw(context);
    EXPECT_TRUE(context.lines().empty());
}

}  // namespace
}  // namespace kalim
