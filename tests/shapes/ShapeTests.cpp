#include <gtest/gtest.h>

#include <cstdio>
#include <span>
#include <string>
#include <vector>

#include "kalimkit/shapes/Kinds.h"
#include "kalimkit/shapes/MDrawAngle.h"
#include "kalimkit/shapes/MDrawArc.h"
#include "kalimkit/shapes/MDrawArrow.h"
#include "kalimkit/shapes/MDrawComment.h"
#include "kalimkit/shapes/MDrawEllipse.h"
#include "kalimkit/shapes/MDrawFatArrow.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/shapes/MDrawMosiac.h"
#include "kalimkit/shapes/MDrawRoundedRect.h"
#include "kalimkit/shapes/MeasureText.h"
#include "tests/support/RecordingContext.h"
#include "tests/support/TestHost.h"

// What can be asked of every kind of shape, a row a case.
namespace kalim {
namespace {

using Points = std::vector<gfx::Point>;
using Lines = std::vector<std::string>;
using Kind = const ToolClass& (*)();
using enum MoveDirection;

constexpr Kind line = &MDrawLine::Class, arrow = &MDrawArrow::Class, fat = &MDrawFatArrow::Class,
               rect = &MDrawRect::Class, rounded = &MDrawRoundedRect::Class,
               ellipse = &MDrawEllipse::Class, mosaic = &MDrawMosiac::Class,
               freeline = &MDrawFreeline::Class, comment = &MDrawComment::Class,
               text = &MDrawText::Class, polyline = &MDrawPolyline::Class,
               angle = &MDrawAngle::Class, arc = &MDrawArc::Class;

// As a canvas makes it, red, finished and recorded: made of all points where the kind is, else
// between the first one and the last.
ToolRef shapeOf(Kind kind, const Points& points, double width = 2, std::uint64_t style = 0) {
    const ToolRef tool = kind().makeWithStartPoint(points.front());
    tool->setColor(gfx::makeColor(1, 0, 0));
    tool->setLineWidth(width);
    tool->setDrawType(style);
    tool->setIsNewBuild(false);
    if (kind().beginning() == ToolBeginning::Taps || kind == freeline) {
        tool->drawThrough(std::span(points).subspan(1));
    } else {
        tool->setEndPoint(points.back());
    }
    return tool;
}

std::string at(const MDrawTool& tool, gfx::Point p) {
    return std::string(tool.toolClass().name) + " " + std::to_string(p.x) + "," +
           std::to_string(p.y);
}

struct Shape : testing::Test {
    Shape() { resetMeasureLabels(); }
    test::TestHost host;
};

TEST_F(Shape, GrowsToItsSmallestSizeAtItsEnd) {
    const struct {
        Kind kind;
        gfx::Point end;
        double width;
        gfx::Point clamped;
    } cases[] = {
        // In x alone, deliberately.
        {line, {0, 3}, 4, {6, 3}},
        // Four points more than the line is wide, towards where it was dragged.
        {rect, {100, 2}, 7, {100, 11}},
        {rect, {100, -2}, 7, {100, -11}},
        {rect, {-9, 100}, 7, {-11, 100}},
        {rect, {100, 10}, 7, {100, 10}},
        {mosaic, {100, 2}, 7, {100, 11}},
    };
    for (const auto& each : cases) {
        const ToolRef tool = shapeOf(each.kind, {{0, 0}, each.end}, each.width);
        tool->limitValidFeatrue();
        EXPECT_EQ(tool->endPoint(), each.clamped) << at(*tool, each.end);
    }
    // A new one that is too small is left so, unless the width alone makes it large enough.
    for (const auto& [width, end] : {std::pair{7, gfx::Point{9, 4}}, {28, {32, 32}}}) {
        const ToolRef tool = MDrawRect::initWithStartPoint({0, 0});
        tool->setLineWidth(width);
        tool->drawUp({3, 4});
        EXPECT_TRUE(tool->finalized());
        EXPECT_EQ(tool->endPoint(), end);
    }
}

TEST_F(Shape, IsHitWhereItIsSeenAndALittleBeside) {
    const struct {
        Kind kind;
        gfx::Point end;
        std::uint64_t style;
        Points hits;
        Points misses;
    } cases[] = {
        // Half the width and eight points beside, no more than eight past its ends.
        {line, {100, 0}, 0, {{50, 9}, {108, 0}, {-8, 0}}, {{50, 9.1}, {108.01, 0}, {-8.1, 0}}},
        {rect, {100, 100}, 0, {{-7, 50}, {6.9, 50}}, {{-7.1, 50}, {50, 50}}},
        {rect, {100, 100}, 1, {{50, 50}}, {{-7.1, 50}}},
        // Less than 7 + 5 high.
        {rect, {10, 10}, 0, {{5, 5}}, {}},
        {ellipse, {100, 40}, 0, {{-6, -6}, {24, 20}}, {{-6.1, 20}, {26, 20}}},
        {ellipse, {100, 40}, 1, {{50, 20}}, {}},
        {ellipse, {100, 12}, 0, {{50, 6}}, {{50, -3}}},
        {mosaic, {100, 40}, 0, {}, {{50, 20}, {0, 0}}},
        {arrow, {0, 100}, 0, {{0, 50}, {8.9, 50}, {0, 100.9}}, {{9.1, 50}, {0, -1.1}}},
        // A straight one has no width, so it is only caught by its handles.
        {fat, {0, 100}, 0, {}, {{0, 50}}},
        {text, {200, 50}, 0, {{-5, -5}}, {{-6, 0}}},
    };
    for (const auto& each : cases) {
        const ToolRef tool = shapeOf(each.kind, {{0, 0}, each.end}, 2, each.style);
        test::RecordingContext context;
        EXPECT_FALSE(each.kind == arrow && tool->hitTest({0, 50})) << "not before it is drawn";
        tool->draw(context);
        for (const gfx::Point p : each.hits)
            EXPECT_TRUE(tool->hitTest(p)) << at(*tool, p);
        for (const gfx::Point p : each.misses)
            EXPECT_FALSE(tool->hitTest(p)) << at(*tool, p);
    }
}

// Where the handles are drawn. Each is a circle, which begins at its right.
Points handlesOf(MDrawTool& tool) {
    test::RecordingContext context;
    tool.setSelected(true);
    tool.drawContent(context);
    if (tool.toolClass().name != "MDrawPolyline" && tool.toolClass().name != "MDrawAngle")
        tool.drawContentHandle(context);
    Points places;
    for (const std::string& call : context.lines()) {
        gfx::Point right;
        if (call.find("#24A9E9FF") != std::string::npos &&
            std::sscanf(call.c_str(), "fill [M %lf,%lf", &right.x, &right.y) == 2)
            places.push_back({right.x - tool.handleSize() / 2.0, right.y});
    }
    return places;
}

TEST_F(Shape, ShowsItsHandlesWhereTheyAreGrabbed) {
    const Points box{{0, 0}, {100, 0}, {100, 60}, {0, 60}};
    const struct {
        Kind kind;
        Points points;
        Points handles;
        std::vector<MoveDirection> grabbed;
    } cases[] = {
        {line, {{0, 0}, {100, 60}}, {{0, 0}, {100, 60}}, {Start, End}},
        {arrow, {{0, 0}, {100, 60}}, {{0, 0}, {100, 60}}, {Start, End}},
        {fat, {{0, 0}, {100, 60}}, {{0, 0}, {100, 60}}, {Start, End}},
        // Drawn from the bottom right to the top left.
        {rect, {{100, 60}, {0, 0}}, box, {TopLeft, TopRight, BottomRight, BottomLeft}},
        {rounded, {{0, 0}, {100, 60}}, box, {TopLeft, TopRight, BottomRight, BottomLeft}},
        {ellipse, {{0, 0}, {100, 60}}, box, {TopLeft, TopRight, BottomRight, BottomLeft}},
        {mosaic, {{0, 0}, {100, 60}}, box, {None, None, None, None}},
        {freeline, {{0, 0}, {0, 0}, {50, 60}, {100, 60}}, {{100, 60}}, {BottomRight}},
        {text, {{0, 0}, {100, 60}}, {{100, 60}}, {BottomRight}},
        {comment,
         {{0, 0}, {100, 60}},
         {{0, 0}, {50, 0}, {100, 0}, {100, 30}, {100, 60}, {50, 60}, {0, 60}, {0, 30}},
         {Body, Body, Body, Body, BottomRight, Body, Body, Body}},
        {polyline, {{0, 0}, {100, 0}, {100, 60}}, {{0, 0}, {100, 0}, {100, 60}}, {}},
        {angle, {{0, 0}, {100, 0}, {100, 60}}, {{0, 0}, {100, 0}, {100, 60}}, {}},
        {arc, {{0, 0}, {100, 60}}, {{0, 0}, {50, 30}, {100, 60}}, {}},
    };
    ASSERT_EQ(std::size(cases), kinds().size());
    for (const auto& each : cases) {
        const ToolRef tool = shapeOf(each.kind, each.points);
        EXPECT_EQ(handlesOf(*tool), each.handles) << tool->name();
        for (std::size_t index = 0; index < each.handles.size(); ++index) {
            const MoveDirection before = tool->moveDirection();
            const gfx::Point place = each.handles[index];
            const bool isGrabbed = each.kind != mosaic;
            EXPECT_EQ(tool->testHitOnHandle(place), isGrabbed) << at(*tool, place);
            EXPECT_EQ(tool->moveDirection(), before) << "a test grabs nothing";
            EXPECT_EQ(tool->hitOnHandle(place), isGrabbed) << at(*tool, place);
            if (each.grabbed.empty()) continue;
            EXPECT_EQ(tool->moveDirection(), each.grabbed[index]) << at(*tool, place);
        }
        EXPECT_FALSE(tool->hitOnHandle({300, 300}));
        EXPECT_TRUE(each.grabbed.empty() || tool->moveDirection() == None);
    }
    const ToolRef shortLine = shapeOf(line, {{0, 0}, {10, 0}});
    EXPECT_TRUE(shortLine->hitOnHandle({5, 0}));
    EXPECT_EQ(shortLine->moveDirection(), Start) << "before the end";
}

TEST_F(Shape, ADragMovesWhatWasGrabbed) {
    const struct {
        Kind kind;
        MoveDirection direction;
        gfx::Point start;
        gfx::Point end;
    } cases[] = {{line, End, {0, 0}, {103, 105}},         {line, Start, {3, 5}, {100, 100}},
                 {line, GroupedLine, {0, 0}, {100, 100}}, {line, Body, {3, 5}, {103, 105}},
                 {rect, Body, {3, 5}, {103, 105}},        {rect, TopLeft, {3, 5}, {100, 100}},
                 {rect, Top, {0, 5}, {100, 100}},         {rect, TopRight, {0, 5}, {103, 100}},
                 {rect, Right, {0, 0}, {103, 100}},       {rect, BottomRight, {0, 0}, {103, 105}},
                 {rect, Bottom, {0, 0}, {100, 105}},      {rect, BottomLeft, {3, 0}, {100, 105}},
                 {rect, Left, {3, 0}, {100, 100}},        {rect, GroupedLine, {0, 0}, {100, 100}}};
    for (const auto& each : cases) {
        const ToolRef tool = shapeOf(each.kind, {{0, 0}, {100, 100}});
        tool->setMoveDirection(each.direction);
        const gfx::Point from = each.direction == Start ? gfx::Point{0, 0} : gfx::Point{100, 100};
        tool->tryMovePointEndPoint(from, from + gfx::Point{3, 5});
        EXPECT_EQ(tool->startPoint(), each.start) << static_cast<unsigned>(each.direction);
        EXPECT_EQ(tool->endPoint(), each.end) << static_cast<unsigned>(each.direction);
        tool->stopMoveHandle();
        EXPECT_EQ(tool->moveDirection(), None);
    }
}

TEST_F(Shape, IsNotSeenInAStyleThatThereIsNot) {
    for (const Kind kind : {rect, ellipse}) {
        test::RecordingContext context;
        shapeOf(kind, {{0, 0}, {100, 50}}, 2, 3)->draw(context);
        EXPECT_EQ(context.lines(), Lines{});
    }
}

TEST_F(Shape, SaysWhatItMeasures) {
    const struct {
        Kind kind;
        Points points;
        const char* text;
        double calibration = 0;
        const char* unit = "px";
    } cases[] = {
        {line, {{0, 0}, {60, 80}}, "Length : 0.05 mm", 0.5, "mm"},
        {line, {{0, 0}, {60, 80}}, "Length : 200.00 furlong", 2, "furlong"},
        {fat, {{0, 0}, {0, 100}}, "Length : 100.00 px"},
        {arrow, {{0, 0}, {0, 100}}, ""},
        {rect, {{9, 6}, {0, 0}}, "Width: 18.00 um\nHeight: 12.00 um\nArea: 216.00 squm", 2, "um"},
        // As a circle of half its width.
        {ellipse, {{9, 10}, {1, 1}}, "Radius: 4.00 px\nArea: 50.27 sqpx\nPerimeter: 25.13 px"},
        // Without the closing edge; half points of area are cut off.
        {polyline, {{0, 0}}, "Length: 0.00 px\nArea: 0.00 sqpx"},
        {polyline, {{0, 0}, {101, 101}, {101, 0}}, "Length: 243.84 px\nArea: 5100.00 sqpx"},
        {polyline, {{0, 0}, {101, 0}, {101, 101}}, "Length: 404.00 px\nArea: 20400.00 sqpx", 2},
        {angle, {{0, 0}, {100, 0}}, ""},
        {arc, {{0, 0}}, ""},
        {arc, {{0, 0}, {80, 60}}, "Length: 100.00 px\nDistance: 100.00 px"},
    };
    for (const auto& each : cases) {
        const ToolRef tool = shapeOf(each.kind, each.points);
        tool->setCalibration(each.calibration);
        tool->setUnit(each.unit);
        EXPECT_EQ(tool->measureText(), each.text) << tool->name();
    }
}

}  // namespace
}  // namespace kalim
