#include <gtest/gtest.h>

#include <functional>

#include "kalimkit/shapes/MDrawPolyline.h"
#include "kalimkit/shapes/MDrawText.h"
#include "kalimkit/ui/control/TextView.h"
#include "tests/canvas/CanvasHost.h"

namespace kalim {
namespace {

using test::CanvasHost;
using ui::GestureState;

// What happens when one thing comes in the middle of another.
struct CrossingHost : CanvasHost {
    // A text typed and still in its field.
    void type(gfx::Point place, const char* text) {
        pick(ToolType::Text);
        tap(place);
        ui::TextView::focusedIn(window())->insertText(text);
    }
};

TEST(MDrawViewCrossing, ATextThatTheBudgetRefusesLeavesTheSelection) {
    CrossingHost host;
    host.environment().setAreaBudget(gfx::Size{250, 250});
    ASSERT_TRUE(host.draw(ToolType::Rectangle, {50, 50}, {240, 240}));
    host.type({100, 300}, "hello\nworld");
    host.canvas->finishEditText();
    EXPECT_EQ(host.takeAlerts().size(), 1u);
    EXPECT_EQ(host.canvas->tools().size(), 1u);
    EXPECT_FALSE(host.canvas->hasSelectedTools());
    EXPECT_EQ(host.events->lines.back(), "type -1 none 0");
}

TEST(MDrawViewCrossing, AStepBeyondTheBudgetIsTakenBackOnce) {
    CrossingHost host;
    host.environment().setAreaBudget(gfx::Size{100, 100});
    const ToolRef innocent = host.draw(ToolType::Line, {10, 10}, {100, 10});
    const ToolRef polygon = MDrawPolyline::initWithStartPoint({20, 20});
    polygon->drawUp({60, 20});
    polygon->drawUp({60, 60});
    ASSERT_TRUE(host.canvas->addTool(polygon));
    // Its vertex is dragged far out; vertices are in no snapshot, so undoing leaves it there.
    host.canvas->selectTools({polygon});
    host.drag({60, 60}, {300, 700});
    EXPECT_EQ(host.takeAlerts().size(), 1u);
    EXPECT_EQ(host.canvas->tools(), (ToolList{innocent, polygon}));
}

TEST(MDrawViewCrossing, ATurnStaysWithTheToolThatWasTurned) {
    CrossingHost host;
    const ToolRef first = host.draw(ToolType::Rectangle, {50, 100}, {150, 200});
    const ToolRef second = host.draw(ToolType::Rectangle, {50, 400}, {150, 500});
    host.tap({100, 100});
    host.canvas->handleRotationGesture(GestureState::Began, 0);
    host.canvas->handleRotationGesture(GestureState::Changed, 0.5);
    host.tap({100, 400});
    host.canvas->handleRotationGesture(GestureState::Ended, 0.7);
    EXPECT_EQ(first->rotateAngle(), 0.5);
    EXPECT_EQ(second->rotateAngle(), 0);
    EXPECT_TRUE(host.canvas->undo());
    EXPECT_EQ(first->rotateAngle(), 0);
}

TEST(MDrawViewCrossing, APatchCannotBeSelectedAndSoUncovered) {
    CrossingHost host;
    host.canvas->setSnipImage(host.plainPicture(390, 400, {0, 0, 1, 1}));
    const ToolRef patch = host.draw(ToolType::Mosaic, {100, 300}, {200, 400});
    host.canvas->selectTools({patch});
    EXPECT_FALSE(host.canvas->hasSelectedTools());
}

TEST(MDrawViewCrossing, WhatIsBeingTypedIsExportedAndIsTheStepThatUndoTakesBack) {
    CrossingHost host;
    host.canvas->setSnipImage(host.plainPicture(390, 400, {0, 0, 1, 1}));
    const auto empty = host.canvas->exportImage();
    host.type({100, 400}, "words");
    EXPECT_NE(*host.canvas->exportImage()->pixels(), *empty->pixels());
    EXPECT_FALSE(host.canvas->curEdittingTextTool());
    host.type({100, 500}, "more");
    ASSERT_EQ(host.canvas->tools().size(), 2u);
    EXPECT_TRUE(host.canvas->undo());
    EXPECT_FALSE(ui::TextView::focusedIn(host.window()));
    EXPECT_EQ(host.canvas->tools().size(), 1u);
}

TEST(MDrawViewCrossing, StoppingOrASecondFingerLeavesNoHalfMadeText) {
    CrossingHost host;
    const std::function<void()> interruptions[] = {
        [&] { host.canvas->finalizeCurrentDrawing(); },
        [&] { host.canvas->beginDrawingForTypeWithDrawType(-1, 0); },
        [&] {
            host.window().fingersBegan({{2, {300, 500}}});
        }};
    for (const auto& interrupt : interruptions) {
        host.pick(ToolType::Text);
        host.down({100, 200});
        interrupt();
        host.window().fingersCancelled({});
        EXPECT_TRUE(host.canvas->tools().empty());
        EXPECT_FALSE(host.canvas->curEdittingTextTool() || host.canvas->handingTool());
    }
    // Typed with the finger still down, it goes with all its records.
    host.pick(ToolType::Text);
    host.down({100, 200});
    host.move({120, 210});
    ui::TextView::focusedIn(host.window())->insertText("abc");
    host.window().fingersBegan({{2, {300, 500}}});
    EXPECT_TRUE(host.canvas->tools().empty());
    EXPECT_FALSE(host.canvas->hasSelectedTools() || host.canvas->canUndo());
}

TEST(MDrawViewCrossing, AGestureThatIsForbiddenHalfWayEndsProperly) {
    CrossingHost host;
    host.canvas->handlePinchGesture(GestureState::Began, 1, {195, 422});
    host.canvas->handlePinchGesture(GestureState::Changed, 1.5, {195, 422});
    host.canvas->setEnableGesture(false);
    host.canvas->handlePinchGesture(GestureState::Ended, 1.5, {195, 422});
    EXPECT_EQ(host.canvas->contextScale(), 1.5);
    EXPECT_EQ(host.canvas->getScale(), 1.5);
    host.canvas->handlePinchGesture(GestureState::Began, 1, {195, 422});
    host.canvas->handlePinchGesture(GestureState::Changed, 0.7, {195, 422});
    EXPECT_EQ(host.canvas->getScale(), 1.5);
}

}  // namespace
}  // namespace kalim
