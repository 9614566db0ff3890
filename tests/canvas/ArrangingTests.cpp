#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <string>

#include "kalimkit/canvas/Alignment.h"
#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/CanvasCursor.h"
#include "kalimkit/canvas/DrawingOrder.h"
#include "kalimkit/canvas/DrawnSpan.h"
#include "kalimkit/canvas/SelectionFrame.h"
#include "kalimkit/canvas/Snapping.h"
#include "kalimkit/shapes/MDrawMagnifier.h"
#include "kalimkit/shapes/MDrawText.h"
#include "tests/canvas/CanvasHost.h"

namespace kalim {

namespace {

using gfx::Point;
using gfx::Rect;

constexpr ui::Modifiers none{};
constexpr ui::Modifiers shift{.shift = true};
constexpr ui::Modifiers alt{.alt = true};
constexpr ui::Modifiers both{.shift = true, .alt = true};

TEST(Alignment, LaysBoxesAlongAnEdgeOrAMiddle) {
    const Rect boxes[] = {{0, 0, 10, 10}, {40, 20, 20, 30}};
    const Rect within(0, 0, 60, 50);
    const struct {
        Alignment alignment;
        Point first;
        Point second;
    } cases[] = {
        {Alignment::Left, {0, 0}, {-40, 0}},    {Alignment::Center, {25, 0}, {-20, 0}},
        {Alignment::Right, {50, 0}, {0, 0}},    {Alignment::Top, {0, 0}, {0, -20}},
        {Alignment::Middle, {0, 20}, {0, -10}}, {Alignment::Bottom, {0, 40}, {0, 0}},
    };
    for (const auto& each : cases) {
        const std::vector<Point> wanted{each.first, each.second};
        EXPECT_EQ(alignmentOffsets(boxes, each.alignment, within), wanted);
    }
}

TEST(Alignment, DistributesWithEqualGapsBetweenTheOutermost) {
    const Rect boxes[] = {{100, 0, 20, 10}, {0, 5, 10, 10}, {12, 9, 30, 10}};
    EXPECT_EQ(distributionOffsets(boxes, Direction::Horizontally),
              (std::vector<Point>{{0, 0}, {0, 0}, {28, 0}}));
    EXPECT_EQ(distributionOffsets(boxes, Direction::Vertically),
              (std::vector<Point>{{0, 0}, {0, -0.5}, {0, 0}}));
    EXPECT_EQ(distributionOffsets(std::span(boxes).first(2), Direction::Vertically),
              (std::vector<Point>(2)));
}

// Places are letters, chosen ones capitals; digits lie in another layer.
TEST(DrawingOrder, PassesTheNextOfTheSameLayer) {
    const struct {
        std::string before;
        OrderChange change;
        std::string after;
    } cases[] = {
        {"aBcd", OrderChange::Forward, "acBd"}, {"aBCd", OrderChange::Forward, "adBC"},
        {"abC", OrderChange::Forward, "abC"},   {"A1b", OrderChange::Forward, "1bA"},
        {"A12", OrderChange::Forward, "A12"},   {"aBCd", OrderChange::Backward, "BCad"},
        {"AbC", OrderChange::Backward, "ACb"},  {"AbCd", OrderChange::ToFront, "bdAC"},
        {"aBcD", OrderChange::ToBack, "BDac"},
    };
    for (const auto& each : cases) {
        std::vector<OrderedPlace> places;
        for (const char letter : each.before) {
            places.push_back({letter >= 'A' && letter <= 'Z', letter >= '0' && letter <= '9'});
        }
        std::string after;
        for (const std::size_t place : changedOrder(places, each.change))
            after += each.before[place];
        EXPECT_EQ(after, each.after) << each.before;
    }
}

TEST(DrawnSpan, FollowsTheKeys) {
    const struct {
        ToolSpan kind;
        ui::Modifiers keys;
        Point to;
        DrawnSpan span;
    } cases[] = {
        {ToolSpan::Box, none, {30, 10}, {{0, 0}, {30, 10}}},
        {ToolSpan::Box, shift, {30, -10}, {{0, 0}, {30, -30}}},
        {ToolSpan::Box, alt, {30, 10}, {{-30, -10}, {30, 10}}},
        {ToolSpan::Box, both, {-5, 10}, {{10, -10}, {-10, 10}}},
        {ToolSpan::Line, alt, {30, 10}, {{-30, -10}, {30, 10}}},
        {ToolSpan::Free, both, {30, 10}, {{0, 0}, {30, 10}}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(drawnSpan(each.kind, {}, each.to, each.keys), each.span);
    // A step of 15 degrees, as long as before.
    const Point end = drawnSpan(ToolSpan::Line, {}, {100, 20}, shift).end;
    EXPECT_NEAR(std::atan2(end.y, end.x), std::numbers::pi / 12, 1e-12);
    EXPECT_NEAR(std::hypot(end.x, end.y), std::hypot(100, 20), 1e-9);
}

TEST(DrawnSpan, ResizesBoxesByEachHandle) {
    using enum MoveDirection;
    const Rect box(10, 10, 40, 20);
    const struct {
        MoveDirection handle;
        Point offset;
        ui::Modifiers keys;
        Rect resized;
    } cases[] = {
        {BottomRight, {10, 5}, none, {10, 10, 50, 25}},
        {TopLeft, {10, 5}, none, {20, 15, 30, 15}},
        {Right, {10, 5}, none, {10, 10, 50, 20}},
        {Top, {10, -5}, none, {10, 5, 40, 25}},
        {Right, {10, 0}, alt, {0, 10, 60, 20}},
        {BottomRight, {40, 0}, shift, {10, 10, 80, 40}},
        {Left, {20, 0}, shift, {30, 15, 20, 10}},
        {BottomRight, {20, 0}, both, {-10, 0, 80, 40}},
        // Past the other side.
        {Right, {-60, 0}, none, {-10, 10, 20, 20}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(resizedBox(box, each.handle, each.offset, each.keys), each.resized)
            << static_cast<int>(each.handle);
}

TEST(SelectionFrame, FindsHandlesWithoutGettingInTheWayOfOthers) {
    using enum MoveDirection;
    SelectionFrame frame;
    frame.box = {100, 100, 90, 90};
    frame.hasCorners = frame.hasSides = frame.hasTurn = true;
    const struct {
        Point p;
        MoveDirection handle;
    } cases[] = {
        {{100, 100}, TopLeft}, {{110, 110}, TopLeft},     {{145, 100}, Top},   {{145, 92}, Top},
        {{145, 106}, Top},     {{145, 110}, None},        {{190, 145}, Right}, {{145, 190}, Bottom},
        {{100, 145}, Left},    {{145, 74}, Turn},         {{145, 60}, None},   {{125, 100}, None},
        {{145, 145}, None},    {{190, 190}, BottomRight},
    };
    for (const auto& each : cases)
        EXPECT_EQ(frame.handleAt(each.p), each.handle) << each.p.x << "," << each.p.y;
    // Turned by a quarter clockwise, its top is at the right.
    frame.turn = gfx::AffineTransform::rotation(std::numbers::pi / 2, frame.box.center());
    EXPECT_EQ(frame.handleAt({216, 145}), Turn);
    EXPECT_EQ(frame.handleAt({190, 145}), Top);
    // A small box has no sides, and a third in its middle is its body's.
    SelectionFrame small;
    small.box = {0, 0, 12, 12};
    small.hasCorners = small.hasSides = true;
    EXPECT_EQ(small.handleAt({6, 6}), None);
    EXPECT_EQ(small.handleAt({6, 0}), None);
    EXPECT_EQ(small.handleAt({-8, -8}), TopLeft);
}

TEST(SnapTargets, DrawBoxesToEdgesMiddlesAndEqualGaps) {
    // Two in a row with a gap of 20, and one apart from all; the picture is far away.
    const SnapTargets targets({{100, 100, 40, 40}, {160, 100, 40, 40}, {400, 300, 50, 50}},
                              Rect(-1000, -1000, 5000, 5000));
    const struct {
        Rect box;
        Point offset;
        std::size_t guides;
    } cases[] = {
        // Its right edge to a middle, its middle to one, and to nothing.
        {{403, 200, 20, 20}, {2, 0}, 1},
        {{417, 200, 20, 20}, {-2, 0}, 1},
        // Middles meet before an edge lies in a middle, though that is nearer.
        {{419, 200, 6, 20}, {3, 0}, 1},
        {{300, 221, 30, 21}, {0, 0}, 0},
        // To the right of both at their gap; its middle lies along theirs.
        {{223, 112, 20, 20}, {-3, -2}, 3},
        // To the left of both.
        {{58, 100, 20, 30}, {2, 0}, 3},
    };
    for (const auto& each : cases) {
        const Snap snap = targets.moved(each.box, 6);
        EXPECT_EQ(snap.offset, each.offset) << each.box.minX();
        EXPECT_EQ(snap.guides.size(), each.guides) << each.box.minX();
    }
    // Between two: as far from either.
    const SnapTargets pair({{0, 0, 10, 10}, {110, 0, 10, 10}}, std::nullopt);
    const Snap between = pair.moved({47, -3, 20, 17}, 6);
    EXPECT_EQ(between.offset.x, 3);
    // A side that is dragged, and the one that is not.
    const Snap side = targets.resized({300, 200, 95, 97}, 1, 0, 6);
    EXPECT_EQ(side.offset, (Point{5, 0}));
    ASSERT_EQ(side.guides.size(), 1U);
    EXPECT_EQ(side.guides.front(), (SnapGuide{{400, 200}, {400, 350}}));
}

TEST(CanvasCursor, TellsHowAHandleIsDragged) {
    EXPECT_EQ(resizeCursor({1, 0}), ui::Cursor::ResizeEW);
    EXPECT_EQ(resizeCursor({-1, -1}), ui::Cursor::ResizeNWSE);
    EXPECT_EQ(resizeCursor({0, 5}), ui::Cursor::ResizeNS);
    EXPECT_EQ(resizeCursor({1, -1}), ui::Cursor::ResizeNESW);
    EXPECT_EQ(resizeCursor({1, 0.3}), ui::Cursor::ResizeEW);
}

// A forgiving canvas with boxes on it.
struct Arranging : testing::Test, test::CanvasHost {
    Arranging() { canvas->setForgiving(true); }

    ToolRef box(const Rect& rect) {
        const ToolRef tool = MDrawRect::initWithStartPoint(rect.origin);
        tool->drawThrough(std::vector<Point>{{rect.maxX(), rect.maxY()}});
        EXPECT_TRUE(canvas->addTool(tool));
        canvas->selectTools({tool});
        return tool;
    }
    CanvasArrangement& shapes() { return *canvas->arrangement(); }
};

TEST_F(Arranging, WhatKeysHaveMovedIsAStepOfItsOwn) {
    const ToolRef tool = box({50, 50, 100, 60});
    const gfx::ColorRef color = tool->color();
    const std::function<void()> changes[] = {
        [&] { canvas->setDrawColorIsTranslucent(gfx::makeColor(0, 0, 1), false); },
        [&] { canvas->setDrawLineWidth(canvas->lineWidth() + 3); },
        [&] { canvas->setToolProperty("opacity", 0.5); },
        [&] {
            drag({100, 50}, {130, 90});
        },
        [&] { canvas->deleteSelectedTools(); },
    };
    for (const auto& change : changes) {
        const Point start = tool->startPoint();
        canvas->selectTools({tool});
        shapes().nudge({3, 4});
        change();
        EXPECT_TRUE(canvas->undo());
        EXPECT_EQ(tool->startPoint(), start + Point(3, 4));
        EXPECT_TRUE(canvas->undo());
        EXPECT_EQ(tool->startPoint(), start);
    }
    EXPECT_EQ(tool->color(), color);
}

TEST_F(Arranging, GoesByTheEdgesThatAreSeen) {
    canvas->setSnipImage(plainPicture(400, 400, {1, 1, 1}));
    const ToolList tools{box({60, 100, 50, 60}), box({130, 200, 50, 60}), box({180, 260, 50, 40})};
    ASSERT_TRUE(canvas->setPictureCut({{}, 1}));
    const auto seen = [&](const ToolRef& tool) {
        return gfx::AffineTransform::quarterTurn(1).apply(tool->shownFrame());
    };
    canvas->selectTools(tools);
    const double left =
        std::min({seen(tools[0]).minX(), seen(tools[1]).minX(), seen(tools[2]).minX()});
    ASSERT_TRUE(shapes().align(Alignment::Left));
    for (const ToolRef& tool : tools)
        EXPECT_NEAR(seen(tool).minX(), left, 1e-9);
    ASSERT_TRUE(shapes().distribute(Direction::Vertically));
    const auto gap = [&](int above, int below) {
        return seen(tools[below]).minY() - seen(tools[above]).maxY();
    };
    EXPECT_NEAR(gap(2, 1), gap(1, 0), 1e-9);
}

// A canvas that is not forgiving keeps what could be done again when something is deleted.
TEST_F(Arranging, AnOrderBringsNothingBackThatIsGone) {
    canvas->setForgiving(false);
    const ToolRef lower = box({50, 50, 100, 60});
    const ToolRef upper = box({50, 150, 100, 60});
    ASSERT_TRUE(shapes().changeOrder(OrderChange::ToBack));
    EXPECT_EQ(canvas->tools(), (ToolList{upper, lower}));
    canvas->undo();
    canvas->selectTools({upper});
    canvas->deleteSelectedTools();
    canvas->redo();
    EXPECT_EQ(canvas->tools(), (ToolList{lower}));
}

TEST_F(Arranging, PicksAShapeWithItsGroupAtAPlace) {
    const ToolList both{box({50, 50, 100, 60}), box({50, 150, 100, 60})};
    canvas->selectTools(both);
    ASSERT_TRUE(shapes().group());
    canvas->selectNone();
    EXPECT_FALSE(shapes().selectAt({10, 10}));
    EXPECT_TRUE(shapes().selectAt(both[0]->startPoint()));
    EXPECT_EQ(canvas->handingTools()->subTools(), both);
}

// A kind that documents do not know.
class Unregistered : public MDrawRect {
public:
    static const ToolClass& Class() {
        static const ToolClass toolClass{"Unregistered", &MDrawRect::Class(),
                                         &MDrawTool::makeToolAt<Unregistered>};
        return toolClass;
    }
    const ToolClass& toolClass() const override { return Class(); }

protected:
    friend class MDrawTool;
    Unregistered() = default;
};

TEST_F(Arranging, CutsNothingThatCannotBePasted) {
    const ToolRef known = box({50, 50, 100, 60});
    const ToolRef other = Unregistered::Class().makeWithStartPoint({50, 150});
    other->drawThrough(std::vector<Point>{{150, 210}});
    ASSERT_TRUE(canvas->addTool(other));
    canvas->selectTools({other});
    EXPECT_EQ(shapes().cutShapes(), "");
    EXPECT_FALSE(shapes().duplicate());
    canvas->selectTools({known, other});
    const std::string text = shapes().cutShapes();
    EXPECT_EQ(canvas->tools(), ToolList{other});
    EXPECT_TRUE(shapes().pasteShapes(text));
    EXPECT_EQ(canvas->tools().size(), 2U);
}

TEST_F(Arranging, AFingerThatIsDownMovesNothingThatIsNoLongerSelected) {
    const ToolRef first = box({50, 50, 100, 60});
    const ToolRef second = box({50, 250, 100, 60});
    const Point start = first->startPoint();
    canvas->setSnaps(true);
    canvas->selectTools({first});
    down({100, 50});
    canvas->selectTools({second});
    move({120, 90});
    up();
    EXPECT_EQ(first->startPoint(), start);
}

// What a pointer's handles are is the kind's: a lens stays round, and a text's font follows.
TEST_F(Arranging, FineHandlesKeepKindsWhatTheyAre) {
    canvas->setFineHandles(true);
    const auto lens = MDrawMagnifier::initWithStartPoint({100, 100});
    lens->drawThrough(std::vector<Point>{{200, 200}});
    const auto text = MDrawText::initWithStartPoint({100, 300});
    text->setText("words");
    text->drawThrough(std::vector<Point>{{200, 340}});
    for (const ToolRef& tool : {ToolRef(lens), ToolRef(text)}) {
        ASSERT_TRUE(canvas->addTool(tool));
        canvas->selectTools({tool});
        const Point corner{tool->frame().maxX(), tool->frame().maxY()};
        const double size = text->fontSize();
        drag(corner, corner + Point(60, 20));
        EXPECT_NE(corner.x, tool->frame().maxX()) << tool->toolClass().name;
        EXPECT_EQ(tool != text, size == text->fontSize());
    }
    EXPECT_NEAR(lens->frame().size.width, lens->frame().size.height, 1e-9);
    lens->scaleBy({}, {2, 1});
    EXPECT_NEAR(lens->frame().size.width, lens->frame().size.height, 1e-9);
}

}  // namespace

}  // namespace kalim
