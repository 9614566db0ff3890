#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "kalimkit/ui/gesture/GestureRecognizer.h"
#include "tests/support/Finger.h"
#include "tests/support/RecordingDevice.h"
#include "tests/support/TestHost.h"
#include "tests/ui/LogView.h"

namespace kalim::ui {

namespace {

using test::Finger;
using test::LogView;
using Lines = LogView::Lines;

// Two views side by side in a third: a at x 0, b at x 100, both in "back".
struct Stage : test::TestHost {
    Stage() : TestHost({.device = std::make_shared<test::RecordingDevice>()}) {
        back = LogView::make("back", {0, 0, 300, 300}, lines);
        a = LogView::make("a", {0, 0, 100, 100}, lines);
        b = LogView::make("b", {100, 0, 100, 100}, lines);
        back->addSubview(a);
        back->addSubview(b);
        window().rootView()->addSubview(back);
        a->setMultipleTouchEnabled(true);
    }
    // Leaves the two to themselves, so that nobody repeats their messages.
    void removeBack() {
        window().rootView()->addSubview(a);
        window().rootView()->addSubview(b);
        back->removeFromSuperview();
    }
    Lines take() { return std::exchange(lines, {}); }

    Lines lines;
    std::shared_ptr<LogView> back;
    std::shared_ptr<LogView> a;
    std::shared_ptr<LogView> b;
};

// Writes what it is fed, and begins when a finger has moved `beginAfter` times.
class LogRecognizer : public GestureRecognizer {
public:
    explicit LogRecognizer(Lines& lines, int beginAfter = 1000)
        : _lines(lines), _beginAfter(beginAfter) {}

protected:
    void touchesBegan(const TouchEvent& event, const std::vector<TouchRef>& active) override {
        note("began", event, active);
    }
    void touchesMoved(const TouchEvent& event, const std::vector<TouchRef>& active) override {
        note("moved", event, active);
        if (++_moves == _beginAfter) enter(GestureState::Began);
    }
    void touchesEnded(const TouchEvent& event, const std::vector<TouchRef>& active) override {
        note("ended", event, active);
        if (active.empty() && isUnderWay()) enter(GestureState::Ended);
    }
    void touchesCancelled(const TouchEvent& event, const std::vector<TouchRef>& active) override {
        note("cancelled", event, active);
        if (isUnderWay()) enter(GestureState::Cancelled);
    }
    void reset() override { _lines.push_back("gesture reset"); }

private:
    void note(const char* phase, const TouchEvent& event, const std::vector<TouchRef>& active) {
        _lines.push_back(std::string("gesture ") + phase + " " +
                         std::to_string(event.touches.size()) + " active " +
                         std::to_string(active.size()));
    }

    Lines& _lines;
    int _beginAfter;
    int _moves = 0;
};

TEST(WindowTouches, AFingerBelongsToTheViewItLandedOn) {
    Stage stage;
    std::vector<gfx::Point> path;
    stage.b->onTouch = [&](const std::string&, const TouchEvent& event) {
        path.push_back(event.touches.front()->previousLocationIn(stage.b.get()));
        path.push_back(event.touches.front()->locationIn(stage.b.get()));
        EXPECT_EQ(event.touches.front()->view(), stage.b);
        EXPECT_EQ(event.time, stage.loop().now());
    };
    Finger finger(stage.window(), 7);
    finger.down({110, 10});
    stage.wait(0.5);
    finger.moveTo({10, 10}, 2).up();
    EXPECT_EQ(stage.take(),
              (Lines{"b began 7 of 7", "b moved 7 of 7", "b moved 7 of 7", "b ended 7 of 7"}));
    EXPECT_EQ(
        path,
        (std::vector<gfx::Point>{
            {10, 10}, {10, 10}, {10, 10}, {-40, 10}, {-40, 10}, {-90, 10}, {-90, 10}, {-90, 10}}));
    EXPECT_TRUE(stage.window().activeTouches().empty());
}

TEST(WindowTouches, WhatAViewDoesNotUseGoesUpTheChain) {
    Stage stage;
    const auto inner = View::initWithFrame({10, 10, 50, 50});
    stage.a->addSubview(View::initWithFrame({0, 0, 100, 100}));
    stage.a->subviews()[0]->addSubview(inner);
    stage.a->onTouch = [&](const std::string&, const TouchEvent& event) {
        EXPECT_EQ(event.touches.front()->view(), inner);
    };
    Finger finger(stage.window());
    finger.down({20, 20}).moveTo({200, 200}).up().down({20, 20}).cancel();
    EXPECT_EQ(stage.take(), (Lines{"a began 1 of 1", "a moved 1 of 1", "a ended 1 of 1",
                                   "a began 1 of 1", "a cancelled 1 of 1"}));
    // Where nobody uses them, they end with the window.
    finger.tap({350, 350});
    EXPECT_EQ(stage.take(), Lines());
}

TEST(WindowTouches, OneHostCallIsOneMessageToEachView) {
    Stage stage;
    stage.removeBack();
    Window& window = stage.window();
    window.fingersBegan({{1, {10, 10}}, {2, {110, 10}}, {3, {20, 10}}});
    window.fingersMoved({{3, {21, 10}}, {2, {111, 10}}, {1, {10, 10}}});
    EXPECT_EQ(window.activeTouches()[0]->phase(), TouchPhase::Stationary) << "it has not moved";
    window.fingersMoved({{1, {11, 10}}, {3, {22, 10}}});
    window.fingersEnded({{1, {11, 10}}});
    window.fingersEnded({{3, {30, 10}}, {2, {111, 10}}});
    EXPECT_EQ(stage.take(), (Lines{"a began 1 3 of 1 3", "b began 2 of 2", "a moved 3 of 1 3",
                                   "b moved 2 of 2", "a moved 1 3 of 1 3", "a ended 1 of 1 3",
                                   "b ended 2 of 2", "a ended 3 of 3"}));
}

TEST(WindowTouches, AViewForOneFingerGetsTheFirstOfASequence) {
    Stage stage;
    stage.removeBack();
    Finger first(stage.window(), 1);
    Finger second(stage.window(), 2);
    Finger third(stage.window(), 3);
    first.down({110, 10});
    second.down({120, 10}).moveTo({125, 10});
    first.moveTo({111, 10}).up();
    third.down({130, 10});
    second.up();
    third.up();
    first.tap({110, 10});
    EXPECT_EQ(stage.take(), (Lines{"b began 1 of 1", "b moved 1 of 1", "b ended 1 of 1",
                                   "b began 1 of 1", "b ended 1 of 1"}));
}

TEST(WindowTouches, IgnoresWhatNoFingerCanDo) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr double endless = std::numeric_limits<double>::infinity();
    Stage stage;
    stage.removeBack();
    Window& window = stage.window();
    window.fingersMoved({{1, {10, 10}}});
    window.fingersEnded({{1, {10, 10}}});
    window.fingersCancelled({{1, {}}});
    window.fingersBegan({{1, {none, 10}}, {2, {10, endless}}, {3, {1000, 10}}});
    window.fingersMoved({{1, {10, 10}}, {3, {10, 10}}});
    EXPECT_EQ(stage.take(), Lines()) << "none of them is down";
    window.fingersBegan({{1, {10, 10}}, {1, {20, 10}}});
    window.fingersBegan({{1, {30, 10}}});
    window.fingersMoved({{1, {none, 10}}});
    window.fingersMoved({});
    EXPECT_EQ(window.activeTouches().front()->locationIn(nullptr), (gfx::Point{10, 10}));
    window.fingersEnded({{1, {none, none}}, {1, {15, 15}}});
    EXPECT_EQ(stage.take(), (Lines{"a began 1 of 1", "a ended 1 of 1"}))
        << "a finger that leaves nowhere has left all the same";
    EXPECT_TRUE(window.activeTouches().empty());
}

TEST(WindowTouches, CancelsTheFingersNamedOrAll) {
    Stage stage;
    stage.removeBack();
    Window& window = stage.window();
    window.fingersBegan({{1, {10, 10}}, {2, {20, 10}}, {3, {30, 10}}});
    window.fingersCancelled({{2, {}}});
    window.fingersCancelled({});
    window.fingersEnded({{1, {10, 10}}});
    EXPECT_EQ(stage.take(), (Lines{"a began 1 2 3 of 1 2 3", "a cancelled 2 of 1 2 3",
                                   "a cancelled 1 3 of 1 3"}));
}

TEST(WindowTouches, AViewThatLeavesItsParentLosesItsFingers) {
    Stage stage;
    stage.removeBack();
    Window& window = stage.window();
    window.fingersBegan({{1, {10, 10}}, {2, {110, 10}}});
    stage.a->onTouch = [&](const std::string& phase, const TouchEvent& event) {
        if (phase != "cancelled") return;
        EXPECT_EQ(event.touches.front()->locationIn(stage.a.get()), (gfx::Point{10, 10}));
        EXPECT_EQ(event.touches.front()->phase(), TouchPhase::Cancelled);
        stage.a->removeFromSuperview();
    };
    stage.a->removeFromSuperview();
    EXPECT_EQ(stage.a->superview(), nullptr);
    window.fingersMoved({{1, {11, 10}}, {2, {111, 10}}});
    EXPECT_EQ(stage.take(),
              (Lines{"a began 1 of 1", "b began 2 of 2", "a cancelled 1 of 1", "b moved 2 of 2"}));
}

TEST(WindowTouches, AViewMayBeDestroyedByItsOwnTouch) {
    for (const std::string phase : {"began", "moved", "ended", "cancelled"}) {
        Stage stage;
        auto holder = View::initWithFrame({0, 0, 100, 100});
        auto inner = LogView::make("inner", {0, 0, 100, 100}, stage.lines);
        inner->passesOn = true;
        const std::weak_ptr<View> watch = inner;
        inner->onTouch = [&](const std::string& now, const TouchEvent&) {
            if (now != phase || !holder) return;
            // With the superview, to which the message is then passed on.
            holder->removeFromSuperview();
            holder = nullptr;
            inner = nullptr;
        };
        holder->addSubview(inner);
        stage.back->addSubview(holder);
        Finger finger(stage.window());
        finger.down({10, 10}).moveTo({20, 10});
        phase == "cancelled" ? finger.cancel() : finger.up();
        EXPECT_TRUE(watch.expired()) << phase;
        EXPECT_TRUE(stage.window().activeTouches().empty()) << phase;
        const auto count = std::ranges::count_if(stage.lines, [](const std::string& line) {
            return line.starts_with("inner cancelled");
        });
        EXPECT_EQ(count, phase == "ended" ? 0 : 1) << phase;
    }
}

TEST(WindowTouches, AHandlerMayTakeAwayAViewThatIsStillToBeTold) {
    Stage stage;
    stage.removeBack();
    stage.a->onTouch = [&](const std::string& phase, const TouchEvent&) {
        if (phase == "moved") stage.b->removeFromSuperview();
    };
    stage.window().fingersBegan({{1, {10, 10}}, {2, {110, 10}}});
    stage.window().fingersMoved({{1, {11, 10}}, {2, {111, 10}}});
    EXPECT_EQ(stage.take(),
              (Lines{"a began 1 of 1", "b began 2 of 2", "a moved 1 of 1", "b cancelled 2 of 2"}));
    stage.a->onTouch = [&](const std::string&, const TouchEvent&) {
        stage.window().fingersCancelled({});
    };
    stage.window().fingersBegan({{3, {20, 10}}});
    EXPECT_EQ(stage.take(), (Lines{"a began 3 of 1 3", "a cancelled 1 3 of 1 3"}));
}

TEST(WindowTouches, ARecognizerSeesItsSubtreeBeforeTheViewsDo) {
    Stage stage;
    stage.removeBack();
    const auto observer = std::make_shared<LogRecognizer>(stage.lines, 1);
    observer->setCancelsTouches(false);
    stage.window().rootView()->addGestureRecognizer(observer);
    Finger finger(stage.window());
    finger.down({10, 10}).moveTo({20, 10}).up();
    EXPECT_EQ(stage.take(), (Lines{"gesture began 1 active 1", "a began 1 of 1",
                                   "gesture moved 1 active 1", "a moved 1 of 1",
                                   "gesture ended 1 active 0", "gesture reset", "a ended 1 of 1"}));
    EXPECT_EQ(observer->state(), GestureState::Possible);
}

TEST(WindowTouches, ABegunGestureTakesTheTouchesFromTheViews) {
    Stage stage;
    stage.back->addGestureRecognizer(std::make_shared<LogRecognizer>(stage.lines, 2));
    Finger one(stage.window(), 1);
    Finger two(stage.window(), 2);
    one.down({10, 10});
    two.down({110, 10}).moveTo({111, 10});
    stage.take();
    one.moveTo({11, 10});
    EXPECT_EQ(stage.take(),
              (Lines{"gesture moved 1 active 2", "a cancelled 1 of 1", "b cancelled 2 of 2"}));
    two.moveTo({112, 10});
    // A finger that joins belongs to the gesture as well.
    Finger three(stage.window(), 3);
    three.down({20, 10}).moveTo({21, 10}).up();
    one.up();
    two.up();
    EXPECT_EQ(stage.take(),
              (Lines{"gesture moved 1 active 2", "gesture began 1 active 3",
                     "gesture moved 1 active 3", "gesture ended 1 active 2",
                     "gesture ended 1 active 1", "gesture ended 1 active 0", "gesture reset"}));
    one.tap({10, 10});
    EXPECT_EQ(stage.take(), (Lines{"gesture began 1 active 1", "a began 1 of 1",
                                   "gesture ended 1 active 0", "gesture reset", "a ended 1 of 1"}));
}

TEST(WindowTouches, ARecognizerThatIsTakenAwayOrDisabledIsLeftAlone) {
    Stage stage;
    stage.removeBack();
    auto recognizer = std::make_shared<LogRecognizer>(stage.lines, 1);
    recognizer->setHandler([&](GestureRecognizer& gesture) {
        if (gesture.state() == GestureState::Began) stage.a->removeGestureRecognizer(gesture);
    });
    stage.a->addGestureRecognizer(recognizer);
    const std::weak_ptr<LogRecognizer> watch = recognizer;
    recognizer = nullptr;
    Finger finger(stage.window());
    finger.down({10, 10}).moveTo({20, 10}).moveTo({30, 10});
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(stage.take(),
              (Lines{"gesture began 1 active 1", "a began 1 of 1", "gesture moved 1 active 1",
                     "gesture reset", "a moved 1 of 1", "a moved 1 of 1"}));
}

TEST(WindowTouches, AnEventEndsWithTheMainQueueDrainedAndTheMarkedViewsDisplayed) {
    Stage stage;
    stage.window().display();
    stage.window().takeDrawn();
    stage.a->onTouch = [&](const std::string&, const TouchEvent&) {
        stage.loop().async([&] { stage.b->setBackgroundColor(gfx::makeColor(1, 0, 0)); });
    };
    Finger(stage.window()).down({10, 10});
    EXPECT_EQ(stage.window().takeDrawn(), std::vector<gfx::Rect>{gfx::Rect(100, 0, 100, 100)});
}

}  // namespace

}  // namespace kalim::ui
