#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <numbers>
#include <utility>
#include <vector>

#include "kalimkit/canvas/FingerState.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "tests/canvas/CanvasHost.h"

namespace kalim {
namespace {

using test::CanvasHost;

TEST(MDrawViewTouches, ATypeWithoutAClassDrawsNothing) {
    CanvasHost host;
    for (const std::int64_t type : {8, -1}) {
        host.canvas->beginDrawingForTypeWithDrawType(type, 0);
        host.drag({10, 10}, {100, 100});
        EXPECT_TRUE(host.canvas->tools().empty()) << type;
    }
}

TEST(MDrawViewTouches, AnOwnerMayEndATextAtOnceThatItIsToldOf) {
    struct Ender : MDrawViewDelegate {
        void textToolEditing(bool isEditing) override {
            if (isEditing) canvas->clearTools();
        }
        std::shared_ptr<MDrawView> canvas;
    };
    CanvasHost host;
    const auto owner = std::make_shared<Ender>();
    owner->canvas = host.canvas;
    host.canvas->setDrawViewdelegate(owner);
    host.pick(ToolType::Text);
    host.tap({100, 100});
    EXPECT_TRUE(host.canvas->tools().empty());
    EXPECT_EQ(host.canvas->fingerState(), FingerState::Idle);
}

TEST(MDrawViewTouches, TwoFingersAtOnceLeaveNoInkEvenWhenOneStays) {
    CanvasHost host;
    host.pick(ToolType::Line);
    host.window().fingersBegan({{1, {50, 50}}, {2, {200, 200}}});
    host.window().fingersMoved({{1, {80, 50}}, {2, {230, 200}}});
    host.window().fingersEnded({{2, {230, 200}}});
    host.window().fingersMoved({{1, {150, 150}}});
    host.window().fingersEnded({{1, {150, 150}}});
    EXPECT_TRUE(host.canvas->tools().empty());
    EXPECT_TRUE(host.draw(ToolType::Line, {50, 50}, {100, 100}));
}

TEST(MDrawViewTouches, RotationNeedsASingleSelectedToolAndGesturesSwitchedOn) {
    CanvasHost host;
    const ToolRef first = host.draw(ToolType::Rectangle, {100, 100}, {200, 160});
    const ToolRef second = host.draw(ToolType::Rectangle, {100, 300}, {200, 360});
    const auto turn = [&] {
        auto& gesture = host.canvas->rotationGesture();
        gesture.drive(ui::GestureState::Began, 0);
        gesture.drive(ui::GestureState::Changed, 0.5);
        gesture.drive(ui::GestureState::Ended, 0.5);
    };
    host.canvas->selectTools({first, second});
    turn();
    EXPECT_EQ(first->rotateAngle(), 0);
    host.canvas->selectTools({first});
    host.canvas->setEnableGesture(false);
    turn();
    EXPECT_EQ(first->rotateAngle(), 0);
    host.canvas->setEnableGesture(true);
    turn();
    EXPECT_EQ(first->rotateAngle(), 0.5);
    turn();
    EXPECT_EQ(first->rotateAngle(), 1.0);
}

TEST(MDrawViewTouches, ClearingDuringAGestureDoesNotLockTheCanvas) {
    CanvasHost host;
    host.pick(ToolType::Line);
    host.down({50, 50});
    host.move({150, 150});
    host.canvas->clearTools();
    host.move({160, 160});
    host.up();
    EXPECT_TRUE(host.canvas->tools().empty());
    EXPECT_TRUE(host.draw(ToolType::Line, {50, 50}, {100, 100}));
}

TEST(MDrawViewTouches, StoppingADrawingHalfWayKeepsWhatIsValidAndLeavesTheCanvasFree) {
    CanvasHost host;
    const std::function<void()> stops[] = {
        [&] { host.canvas->beginDrawingForTypeWithDrawType(-1, 0); },
        [&] { host.canvas->finalizeCurrentDrawing(); }};
    for (const auto& stop : stops) {
        for (const double length : {100.0, 3.0}) {
            host.canvas->clearTools();
            host.pick(ToolType::Line);
            host.down({50, 50});
            host.move({50 + length, 50});
            stop();
            host.move({200, 200});
            host.up();
            EXPECT_EQ(host.canvas->tools().size(), length > 5 ? 1u : 0u);
            EXPECT_EQ(host.canvas->canUndo(), length > 5);
            EXPECT_FALSE(host.canvas->handingTool());
            EXPECT_TRUE(host.draw(ToolType::Line, {50, 300}, {100, 300}));
        }
    }
}

TEST(MDrawViewTouches, AToolThatAnUndoTookAwayUnderTheFingerStaysAway) {
    CanvasHost host;
    host.draw(ToolType::Line, {50, 100}, {250, 100});
    host.down({150, 100});
    host.canvas->undo();
    host.move({150, 150});
    host.up();
    EXPECT_TRUE(host.canvas->tools().empty());
    EXPECT_FALSE(host.canvas->hasSelectedTools() || host.canvas->canUndo());
    EXPECT_TRUE(host.canvas->canRedo());
}

TEST(MDrawViewTouches, ASelectionLetGoDuringARotationKeepsItAsAStep) {
    CanvasHost host;
    const ToolRef arrow = host.draw(ToolType::Arrow, {100, 100}, {200, 100});
    host.canvas->selectTools({arrow});
    auto& gesture = host.canvas->rotationGesture();
    gesture.drive(ui::GestureState::Began, 0);
    gesture.drive(ui::GestureState::Changed, std::numbers::pi / 2);
    host.canvas->selectNone();
    gesture.drive(ui::GestureState::Changed, 3);
    host.canvas->selectTools({arrow});
    gesture.drive(ui::GestureState::Ended, 3);
    EXPECT_NEAR(arrow->startPoint().y, 50, 1e-9);
    EXPECT_NEAR(arrow->rotateAngle(), std::numbers::pi / 2, 1e-9);
    host.canvas->handleRotationGesture(ui::GestureState::Changed, NAN);
    EXPECT_NEAR(arrow->startPoint().y, 50, 1e-9);
    gesture.drive(ui::GestureState::Changed, 0);
    gesture.drive(ui::GestureState::Ended, 0);
    EXPECT_NEAR(arrow->startPoint().y, 50, 1e-9);
    host.canvas->undo();
    host.canvas->undo();
    EXPECT_NEAR(arrow->startPoint().y, 100, 1e-9);
}

TEST(MDrawViewTouches, AnInterruptedCreationEndsAtItsLastPointConvertedTwice) {
    CanvasHost host;
    host.canvas->setSnipImage(host.plainPicture(390, 844, {1, 1, 1, 1}));
    const std::function<void()> interruptions[] = {
        [&] {
            host.window().fingersBegan({{2, {300, 700}}});
        },
        [&] { host.window().fingersCancelled({}); }};
    for (const auto& interrupt : interruptions) {
        host.pick(ToolType::Rectangle);
        host.down({195, 422});
        host.move({281, 508});
        interrupt();
        // Shown at 0.86: 86 points are 100 on the canvas, and 100 divided by 0.86 once more.
        EXPECT_NEAR(host.canvas->tools().back()->endPoint().x, 195 + 100 / 0.86, 1e-9);
        host.window().fingersCancelled({});
    }
}

TEST(MDrawViewTouches, LettingGoFinalizesAndAThirdFingerDrawsNothing) {
    CanvasHost host;
    const ToolRef box = host.draw(ToolType::Rectangle, {100, 100}, {200, 200});
    host.tap({150, 100});
    // Too thin for its line now; letting go mends it.
    box->setEndPoint({200, 101});
    host.tap({300, 400});
    EXPECT_EQ(box->frame(), gfx::Rect(100, 100, 100, 6));
    host.window().fingersBegan({{1, {50, 300}}, {2, {100, 300}}, {3, {150, 300}}});
    host.window().fingersMoved({{1, {50, 400}}, {2, {100, 400}}, {3, {150, 400}}});
    host.window().fingersEnded({{1, {50, 400}}, {2, {100, 400}}, {3, {150, 400}}});
    EXPECT_EQ(host.canvas->tools().size(), 1u);
}

// A host that answers the first message about a lost selection in its own way.
class Answering : public MDrawViewDelegate {
public:
    explicit Answering(std::function<void()> answer) : _answer(std::move(answer)) {}
    void seletedToolsStateChanged(bool hasSelection) override {
        if (!hasSelection && _answer) std::exchange(_answer, nullptr)();
    }

private:
    std::function<void()> _answer;
};

TEST(MDrawViewTouches, ADelegateMayClearTheCanvasWhileItsSelectionChanges) {
    CanvasHost host;
    const ToolRef first = host.draw(ToolType::Line, {50, 100}, {250, 100});
    const ToolRef second = host.draw(ToolType::Line, {50, 200}, {250, 200});
    const auto clearing = std::make_shared<Answering>([&] { host.canvas->clearTools(); });
    host.canvas->setDrawViewdelegate(clearing);
    host.tap({150, 100});
    host.tap({150, 200});
    EXPECT_TRUE(host.canvas->tools().empty());
    EXPECT_FALSE(host.canvas->hasSelectedTools());

    const ToolRef third = host.draw(ToolType::Line, {50, 100}, {250, 100});
    host.tap({150, 100});
    const auto again = std::make_shared<Answering>([&] { host.canvas->clearTools(); });
    host.canvas->setDrawViewdelegate(again);
    host.drag({100, 400}, {200, 400});
    EXPECT_TRUE(host.canvas->tools().empty());
    EXPECT_TRUE(host.draw(ToolType::Line, {50, 300}, {100, 300}));
}

TEST(MDrawViewTouches, ADelegateMayDropTheCanvasWhenAnInvalidToolIsSweptAway) {
    CanvasHost host;
    host.draw(ToolType::Arrow, {100, 100}, {150, 100});
    host.tap({120, 100});
    const auto dropping = std::make_shared<Answering>([&] {
        host.canvas->removeFromSuperview();
        host.canvas = nullptr;
    });
    host.canvas->setDrawViewdelegate(dropping);
    host.canvas->setDrawLineWidth(28);
    MDrawView* const canvas = host.canvas.get();
    canvas->removeInvaildTools();
    EXPECT_FALSE(host.canvas);
}

// A host that lets go of its canvas in the middle of a message.
class LettingGo : public MDrawViewDelegate {
public:
    explicit LettingGo(std::shared_ptr<MDrawView>& view) : _view(view) {}
    void canUndoStateChangedCanRedo(bool, bool) override {
        _view->removeFromSuperview();
        _view = nullptr;
    }

private:
    std::shared_ptr<MDrawView>& _view;
};

TEST(MDrawViewTouches, ADelegateMayDropTheCanvasFromWithinAMessage) {
    CanvasHost host;
    const auto delegate = std::make_shared<LettingGo>(host.canvas);
    host.canvas->setDrawViewdelegate(delegate);
    host.pick(ToolType::Line);
    host.drag({50, 50}, {100, 100});
    EXPECT_FALSE(host.canvas);
}

// What a finger does is one thing at a time, also where something comes between.
TEST(MDrawViewTouches, AFingerTapsDrawsDragsOrHasDoneItsWork) {
    using enum FingerState;
    CanvasHost host;
    MDrawView& canvas = *host.canvas;
    using Act = std::function<void()>;
    const auto lands = [&](gfx::Point p) -> Act { return [&host, p] { host.down(p); }; };
    const auto moves = [&](gfx::Point p) -> Act { return [&host, p] { host.move(p); }; };
    const Act lifts = [&] { host.up(); };
    const Act joined = [&] { host.window().fingersBegan({{2, {90, 90}}}); };
    const Act leftAlone = [&] { host.window().fingersEnded({{2, {90, 90}}}); };
    const Act cancelled = [&] { host.window().fingersCancelled({}); };
    const Act typing = [&] { host.pick(ToolType::Text), host.tap({100, 100}); };
    const std::pair<Act, FingerState> steps[] = {{[&] { host.pick(ToolType::Rectangle); }, Idle},
                                                 {lands({20, 20}), Tapping},
                                                 {moves({80, 80}), Drawing},
                                                 {[&] { canvas.exportImage(); }, Aborted},
                                                 {moves({90, 90}), Aborted},
                                                 {lifts, Idle},
                                                 {lands({20, 50}), Tapping},
                                                 {moves({30, 60}), Dragging},
                                                 {joined, Idle},
                                                 {leftAlone, Idle},
                                                 {lifts, Idle},
                                                 {[&] { canvas.setForgiving(true); }, Idle},
                                                 {lands({30, 60}), Tapping},
                                                 {moves({40, 70}), Dragging},
                                                 {[&] { canvas.undo(); }, Aborted},
                                                 {cancelled, Idle},
                                                 {typing, Idle},
                                                 {lands({20, 150}), Aborted},
                                                 {lifts, Idle}};
    for (std::size_t step = 0; step < std::size(steps); ++step) {
        steps[step].first();
        EXPECT_EQ(canvas.fingerState(), steps[step].second) << "after step " << step;
    }
}

}  // namespace
TEST(MDrawView, LoupeStandsAboveAFingertipThatDragsAHandleAndGoesWithIt) {
    using ui::TouchKind;
    enum class End { Lift, Cancel, Company, Removal };
    struct Case {
        TouchKind kind;
        gfx::Point from;
        End end;
        bool isShown;
    };
    const Case cases[] = {{TouchKind::Finger, {200, 200}, End::Lift, true},
                          {TouchKind::Finger, {200, 200}, End::Cancel, true},
                          {TouchKind::Finger, {200, 200}, End::Company, true},
                          {TouchKind::Finger, {200, 200}, End::Removal, true},
                          {TouchKind::Finger, {150, 150}, End::Lift, false},
                          {TouchKind::Mouse, {200, 200}, End::Lift, false},
                          {TouchKind::Pen, {200, 200}, End::Lift, false}};
    for (const Case& each : cases) {
        CanvasHost host;
        host.canvas->setForgiving(true);
        const ToolRef line = host.draw(ToolType::Line, {100, 100}, {200, 200});
        host.canvas->selectTools({line});
        const auto count = [&] { return host.window().rootView()->subviews().size(); };
        const std::size_t before = count();
        const ui::TouchContact contact{.kind = each.kind};
        host.window().fingersBegan({{7, each.from, contact}});
        for (const double way : {6.0, 30.0})
            host.window().fingersMoved({{7, each.from + gfx::Point{way, 0}, contact}});
        EXPECT_EQ(count(), each.isShown ? before + 1 : before);
        if (each.end == End::Lift) host.window().fingersEnded({{7, each.from, contact}});
        if (each.end == End::Cancel) host.window().fingersCancelled({});
        if (each.end == End::Company) host.window().fingersBegan({{8, {300, 300}}});
        if (each.end == End::Removal) host.canvas->removeFromSuperview();
        EXPECT_EQ(count(), each.end == End::Removal ? before - 1 : before);
    }
}

TEST(MDrawView, WhatIsForeseenIsShownAndNothingThatTheStrokeHas) {
    CanvasHost host;
    host.canvas->setForgiving(true);
    host.pick(ToolType::Freehand);
    host.down({100, 100});
    host.move({120, 100});
    auto& drawing = static_cast<MDrawFreeline&>(*host.canvas->handingTool());
    drawing.takeAddedExtent();
    host.window().fingerPredicted(1, {{140, 100}, {160, 110}});
    drawing.predict({{140, 100}, {170, 110}});
    const auto added = drawing.takeAddedExtent();
    EXPECT_TRUE(added && added->contains(gfx::Point{169, 110}));
    host.move({130, 100});
    host.up();
    EXPECT_EQ(drawing.allPoints(),
              (std::vector<gfx::Point>{{100, 100}, {120, 100}, {130, 100}, {130, 100}}));
}

}  // namespace kalim
