#include "kalimkit/shapes/MDrawPolyline.h"

#include <gtest/gtest.h>

#include "kalimkit/shapes/MDrawArc.h"
#include "kalimkit/shapes/MeasureText.h"
#include "tests/support/RecordingContext.h"

namespace kalim {
namespace {

using Points = std::vector<gfx::Point>;
using Lines = std::vector<std::string>;

// Made by its class, as a canvas does.
template <typename Shape = MDrawPolyline>
std::shared_ptr<Shape> shapeOf(const Points& points) {
    const ToolRef tool = Shape::Class().makeWithStartPoint(points.front());
    tool->setColor(gfx::makeColor(1, 0, 0));
    tool->setLineWidth(2);
    for (std::size_t i = 1; i < points.size(); ++i) {
        tool->drawMove(points[i]);
        tool->drawUp(points[i]);
    }
    return std::static_pointer_cast<Shape>(tool);
}

struct Drawing {
    // What is stroked, without the handles.
    Lines outlines;
    int handles = 0;
};

Drawing drawn(MDrawTool& tool) {
    test::RecordingContext context;
    tool.draw(context);
    Drawing drawing;
    for (const std::string& line : context.lines()) {
        if (line.find("#24A9E9FF") != std::string::npos) ++drawing.handles;
        const bool isCircle =
            line.find(" C ") != std::string::npos && line.find(" Z]") != std::string::npos;
        if (!line.starts_with("stroke") || isCircle) continue;
        drawing.outlines.push_back(line.substr(0, line.find(" cap=")));
    }
    return drawing;
}

TEST(MDrawPolyline, IsFinishedByATapOnTheFirstOfTwoVertices) {
    const auto shape = shapeOf({{0, 0}});
    shape->drawUp({2, 2});
    EXPECT_EQ(shape->points().size(), 1u);
    EXPECT_FALSE(shape->finalized());
    shape->drawUp({100, 0});
    EXPECT_FALSE(shape->finalized());
    shape->drawUp({2, 2});
    EXPECT_EQ(shape->points(), (Points{{0, 0}, {100, 0}}));
    EXPECT_TRUE(shape->finalized());
    EXPECT_EQ(drawn(*shape).outlines, Lines{"stroke [M 0,0 L 100,0 Z] #FF0000FF width=2"});
    EXPECT_EQ(drawn(*shape).handles, 0);
}

TEST(MDrawPolyline, ShowsItsVerticesAndARubberBandWhileItGrows) {
    const auto shape = shapeOf({{0, 0}, {100, 0}});
    EXPECT_EQ(drawn(*shape).outlines[0], "stroke [M 0,0 L 100,0] #FF0000FF width=2");
    EXPECT_EQ(drawn(*shape).handles, 2);
    shape->drawMove({50, 60});
    EXPECT_EQ(drawn(*shape).outlines[0], "stroke [M 0,0 L 100,0 L 50,60] #FF0000FF width=2");
    shape->drawMove({0, 0});
    EXPECT_EQ(drawn(*shape).outlines[0], "stroke [M 0,0 L 100,0] #FF0000FF width=2");
}

TEST(MDrawPolyline, NoVertexFollowsOnceItIsLetGo) {
    const auto shape = shapeOf({{0, 0}, {100, 0}, {100, 60}});
    ASSERT_TRUE(shape->hitOnHandle({100, 0}));
    shape->stopMoveHandle();
    shape->tryMovePointEndPoint({100, 0}, {150, 50});
    EXPECT_EQ(shape->points(), (Points{{0, 0}, {100, 0}, {100, 60}}));
}

TEST(MDrawAngle, IsFinishedByItsThirdVertexButNotByItsFirst) {
    const auto angle = shapeOf<MDrawAngle>({{0, 0}, {100, 0}});
    angle->drawUp({0, 0});
    EXPECT_EQ(angle->measureText(), "");
    EXPECT_FALSE(angle->finalized());
    angle->drawUp({100, 100});
    EXPECT_TRUE(angle->finalized());
    angle->drawUp({300, 300});
    EXPECT_EQ(angle->points().size(), 3u);
}

TEST(MDrawAngle, MarksAndMeasuresTheTurnFromItsFirstArm) {
    const gfx::Point o{100, 100};
    const struct {
        Points points;
        const char* text;
        // Where the arc starts and ends.
        const char* start;
        const char* end;
    } cases[] = {
        {{{150, 100}, o, {100, 140}}, "Degree : 90.00", "[M 120,100 C ", " 100,120] "},
        {{{100, 140}, o, {150, 100}}, "Degree : 270.00", "[M 100,120 C ", " 120,100] "},
        {{{40, 100}, o, {160, 100}}, "Degree : 180.00", "[M 80,100 C ", " 120,100] "},
        {{{150, 100}, o, {100, 110}}, "Degree : 90.00", "[M 110,100 C ", " 100,110] "},
    };
    resetMeasureLabels();
    for (const auto& c : cases) {
        const auto angle = shapeOf<MDrawAngle>(c.points);
        EXPECT_EQ(angle->measureText(), c.text);
        const Lines lines = drawn(*angle).outlines;
        ASSERT_EQ(lines.size(), 2u);
        EXPECT_EQ(lines[0].find('Z'), std::string::npos);
        EXPECT_NE(lines[1].find(c.start), std::string::npos) << lines[1];
        EXPECT_NE(lines[1].find(c.end), std::string::npos) << lines[1];
    }
}

TEST(MDrawArc, BendsThroughTheMidpointOfItsDragAndMeasuresTheCurve) {
    resetMeasureLabels();
    const auto tooEarly = shapeOf<MDrawArc>({{0, 0}});
    tooEarly->finalize();
    EXPECT_EQ(drawn(*tooEarly).outlines, Lines{});
    EXPECT_EQ(tooEarly->measureText(), "");
    const auto arc = shapeOf<MDrawArc>({{0, 0}});
    arc->drawMove({40, 0});
    EXPECT_EQ(drawn(*arc).outlines, Lines{});
    arc->drawUp({80, 60});
    EXPECT_EQ(arc->points(), (Points{{0, 0}, {40, 30}, {80, 60}}));
    EXPECT_EQ(drawn(*arc).outlines, Lines{"stroke [M 0,0 Q 40,30 80,60] #FF0000FF width=3"});
    EXPECT_EQ(drawn(*arc).handles, 0);
}

}  // namespace
}  // namespace kalim
