#include "kalimkit/shapes/MDrawFreeline.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "kalimkit/shapes/MeasureText.h"
#include "kalimkit/shapes/outline/SegmentHit.h"
#include "tests/support/RecordingContext.h"

namespace kalim {
namespace {

using Lines = std::vector<std::string>;
using Stroke = std::vector<gfx::Point>;

const Stroke eightPoints{{0, 0},   {10, 0},  {20, 10}, {30, 10},
                         {40, 20}, {50, 20}, {60, 30}, {70, 30}};

// Red, 2 wide; every stroke ends with a touch-up at its last point.
std::shared_ptr<MDrawFreeline> freelineOf(const std::vector<Stroke>& strokes) {
    const auto line = MDrawFreeline::initWithStartPoint({500, 500});
    line->setColor(gfx::makeColor(1, 0, 0));
    line->setLineWidth(2);
    for (const Stroke& stroke : strokes) {
        line->setNeedNewLine(true);
        for (std::size_t i = 0; i + 1 < stroke.size(); ++i)
            line->drawMove(stroke[i]);
        line->drawUp(stroke.back());
    }
    return line;
}

Stroke level(int count, double step = 10) {
    Stroke points;
    for (int i = 0; i < count; ++i)
        points.push_back({i * step, 100});
    return points;
}

Lines drawn(MDrawTool& tool) {
    test::RecordingContext context;
    tool.draw(context);
    return context.lines();
}

TEST(MDrawFreeline, DrawsCurvesThroughMidpointsAndLeavesOutWhatFollowsTheLast) {
    Stroke ten = eightPoints;
    ten.insert(ten.end(), {{80, 40}, {90, 40}});
    const auto line = freelineOf({ten, {{0, 50}, {9, 50}, {18, 50}, {27, 50}}, level(5)});
    const std::string path =
        "stroke [M 0,0 C 10,0 20,10 30,15 M 30,15 C 40,20 50,20 60,25 "
        "M 0,100 C 10,100 20,100 30,100] ";
    const std::string pen = " width=2 cap=round join=round";
    EXPECT_EQ(drawn(*line), Lines{path + "#FF000066" + pen});
    line->setColor(gfx::makeColor(0, 0, 1));
    EXPECT_EQ(drawn(*line), Lines{path + "#0000FF66" + pen});
    line->setIsNewBuild(false);
    EXPECT_EQ(drawn(*line), Lines{path + "#0000FFFF" + pen});
}

TEST(MDrawFreeline, IsValidAndDrawnFromSixPoints) {
    const auto five = freelineOf({level(3), level(2)});
    EXPECT_FALSE(five->isDrawVaild());
    EXPECT_EQ(drawn(*five), Lines{});
    EXPECT_TRUE(freelineOf({level(3), level(3)})->isDrawVaild());
    EXPECT_FALSE(freelineOf({level(4)})->hitTest({15, 100}));
    EXPECT_TRUE(freelineOf({level(6)})->hitTest({15, 100}));
}

TEST(MDrawFreeline, ASegmentIsHitInItsBoxAndAboutTheCornersOfIt) {
    const gfx::Point left{100, 100};
    const gfx::Point right{200, 100};
    // Width 2: 9 points of reach, and 4 above and below a level segment.
    const struct {
        gfx::Point from, to, at;
        bool isHit;
    } cases[] = {
        {left, right, {150, 103.9}, true},
        {left, right, {150, 104}, false},
        {left, right, {150, 95.9}, false},
        {left, right, {92, 98}, true},
        {left, right, {208, 102}, true},
        {left, right, {208, 97}, false},
        // Too narrow for its box, which is then 9 wide, beyond the start.
        {right, left, {150, 100}, false},
        {right, left, {208.9, 100}, true},
        {right, left, {195, 100}, true},
        {{0, 0}, {60, 60}, {30, 42}, true},
        {{0, 0}, {60, 60}, {30, 43}, false},
        // Without a direction: 8 by 8 about the point, and discs about two corners.
        {left, left, {111, 104}, true},
        {left, left, {113.1, 104}, false},
    };
    for (const auto& [from, to, at, isHit] : cases)
        EXPECT_EQ(hitsFreehandSegment(at, from, to, 2), isHit) << from.x << " " << at.x;
}

TEST(MDrawFreeline, TheTouchUpFitsTheBoxAndTheHandleScalesAwayFromTheCentre) {
    const auto line = freelineOf({eightPoints});
    EXPECT_EQ(line->startPoint(), (gfx::Point{0, 0}));
    EXPECT_EQ(line->endPoint(), (gfx::Point{70, 30}));
    EXPECT_EQ(line->centerPoint(), (gfx::Point{35, 15}));
    line->setIsNewBuild(false);
    ASSERT_TRUE(line->hitOnHandle({70, 30}));
    EXPECT_EQ(line->moveDirection(), MoveDirection::BottomRight);
    line->tryMovePointEndPoint({70, 30}, {34, 60});
    line->tryMovePointEndPoint({70, 30}, {90, 14});
    EXPECT_EQ(line->allPoints(), eightPoints);
    line->tryMovePointEndPoint({70, 30}, {105, 45});
    EXPECT_EQ(line->frame(), gfx::Rect(-35, -15, 140, 60));
    line->stopMoveHandle();
    EXPECT_EQ(line->endPoint(), (gfx::Point{105, 45}));
    EXPECT_EQ(line->moveDirection(), MoveDirection::None);
    EXPECT_EQ(drawn(*line)[0].substr(0, 23), "stroke [M -35,-15 C -15");
}

TEST(MDrawFreeline, SnapshotsShareStrokesThatDoNotChange) {
    const auto line = freelineOf({eightPoints});
    line->setIsNewBuild(false);
    const auto recorded = [&] {
        return *line->undoMgr().feature()->get<PointLinesRef>("MDrawFree-linepoint");
    };
    ASSERT_TRUE(line->updatefeature());
    const PointLinesRef first = recorded();
    line->setColor(gfx::makeColor(0, 1, 0));
    line->updatefeature();
    EXPECT_EQ(recorded(), first);
    line->setMoveDirection(MoveDirection::Body);
    line->tryMovePointEndPoint({0, 0}, {5, 0});
    line->updatefeature();
    EXPECT_EQ(first->at(0), eightPoints);
    line->undo();
    EXPECT_EQ(line->allPoints(), eightPoints);
    EXPECT_EQ(line->startPoint(), (gfx::Point{0, 0}));
    line->setFeature(std::make_shared<Feature>());
    EXPECT_EQ(line->allPoints(), Stroke{});
    line->addNewPoint({7, 7});
    EXPECT_EQ(line->allPoints(), Stroke{(gfx::Point{7, 7})});
}

TEST(MDrawFreeline, MeasuresTheGapBetweenStrokes) {
    resetMeasureLabels();
    EXPECT_EQ(freelineOf({{{0, 0}, {3, 4}}, {{3, 14}, {3, 15}}})->measureText(),
              "Length: 16.00 px");
}

TEST(MDrawFreeline, TellsWhatAPointHasAddedToThePicture) {
    const auto line = MDrawFreeline::initWithStartPoint({0, 0});
    line->setLineWidth(4);
    for (int i = 0; i < 5; ++i)
        line->drawMove(eightPoints[i]);
    EXPECT_EQ(line->takeAddedExtent(), std::nullopt);
    line->drawMove(eightPoints[5]);
    // Only now is anything drawn.
    EXPECT_EQ(line->takeAddedExtent(), std::nullopt);
    line->drawMove(eightPoints[6]);
    EXPECT_EQ(line->takeAddedExtent(), gfx::Rect());
    line->drawMove(eightPoints[7]);
    EXPECT_EQ(line->takeAddedExtent(), gfx::Rect(28, 13, 34, 14));
    EXPECT_EQ(line->takeAddedExtent(), gfx::Rect());
    const std::function<void()> changes[] = {
        [&] {
            line->drawUp({80, 40});
        },
        [&] { line->setColor(gfx::makeColor(0, 0, 0)); },
        [&] { line->setMaskColorByAlpha(0.5); },
        [&] { line->setLineWidth(6); },
        [&] { line->allPointsHandle([](gfx::Point p) { return p * 2; }); },
        [&] { line->stopMoveHandle(); },
        [&] { line->setFeature(std::make_shared<Feature>(line->getFeature())); },
    };
    for (const auto& change : changes) {
        change();
        EXPECT_EQ(line->takeAddedExtent(), std::nullopt);
        EXPECT_EQ(line->takeAddedExtent(), gfx::Rect());
    }
}

TEST(MDrawFreeline, DrawsOnlyTheCurvesWithinTheClip) {
    const auto line = freelineOf({level(10'000, 3)});
    const auto curvesIn = [&](const gfx::Rect& clip) {
        test::RecordingContext context;
        context.clipToRect(clip);
        line->draw(context);
        return std::ranges::count(context.lines().back(), 'C');
    };
    // Curve n runs from 9n to 9n + 9, at y = 100.
    EXPECT_EQ(curvesIn({6100, 50, 100, 100}), 13);
    EXPECT_EQ(curvesIn({6100, 102, 100, 100}), 13);
    EXPECT_EQ(curvesIn({6100, 104, 100, 100}), 0);
}

TEST(MDrawFreeline, AFlatOneKeepsItsBoxUnderForgivingRules) {
    const auto line = freelineOf({level(6)});
    line->setRules({.forgiving = true});
    line->updatefeature();
    line->finalize();
    EXPECT_EQ(line->endPoint(), (gfx::Point{50, 100}));
    EXPECT_FALSE(line->hasUnrecordedChange());
}

}  // namespace
}  // namespace kalim
