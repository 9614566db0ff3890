#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

using test::Finger;
using test::Lines;
using test::LogView;

// Two views side by side: a at x 0, b at x 100.
struct WindowTouches : testing::Test, test::Stage {
    WindowTouches() {
        root->addSubview(a);
        root->addSubview(b);
        a->setMultipleTouchEnabled(true);
    }

    std::shared_ptr<LogView> a = LogView::make("a", {0, 0, 100, 100}, lines);
    std::shared_ptr<LogView> b = LogView::make("b", {100, 0, 100, 100}, lines);
};

// Writes what it is fed, and begins when a finger has moved `beginAfter` times.
class LogRecognizer : public GestureRecognizer {
public:
    LogRecognizer(Lines& lines, int beginAfter) : _lines(lines), _beginAfter(beginAfter) {}

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

TEST_F(WindowTouches, AFingerBelongsToTheViewItLandedOnOrToWhatIsAboveIt) {
    std::vector<gfx::Point> path;
    b->onTouch = [&](const std::string&, const TouchEvent& event) {
        path.push_back(event.touches.front()->previousLocationIn(b.get()));
        path.push_back(event.touches.front()->locationIn(b.get()));
        EXPECT_EQ(event.touches.front()->view(), b);
        EXPECT_EQ(event.time, loop().now());
    };
    Finger finger(window(), 7);
    finger.down({110, 10});
    wait(0.5);
    finger.moveTo({10, 10}, 2).up();
    EXPECT_EQ(take(),
              (Lines{"b began 7 of 7", "b moved 7 of 7", "b moved 7 of 7", "b ended 7 of 7"}));
    EXPECT_EQ(
        path,
        (std::vector<gfx::Point>{
            {10, 10}, {10, 10}, {10, 10}, {-40, 10}, {-40, 10}, {-90, 10}, {-90, 10}, {-90, 10}}));
    EXPECT_TRUE(window().activeTouches().empty());

    const auto inner = View::initWithFrame({10, 10, 50, 50});
    a->addSubview(View::initWithFrame({0, 0, 100, 100}));
    a->subviews()[0]->addSubview(inner);
    a->onTouch = [&](const std::string&, const TouchEvent& event) {
        EXPECT_EQ(event.touches.front()->view(), inner);
    };
    one.down({20, 20}).moveTo({200, 200}).up().down({20, 20}).cancel();
    EXPECT_EQ(take(), (Lines{"a began 1 of 1", "a moved 1 of 1", "a ended 1 of 1", "a began 1 of 1",
                             "a cancelled 1 of 1"}));
    // Where nobody uses them, they end with the window.
    one.tap({350, 350});
    EXPECT_EQ(take(), Lines());
}

TEST_F(WindowTouches, OneHostCallIsOneMessageToEachViewAndTheFirstFingerToOneForOneFinger) {
    window().fingersBegan({{1, {10, 10}}, {2, {110, 10}}, {3, {20, 10}}});
    window().fingersMoved({{3, {21, 10}}, {2, {111, 10}}, {1, {10, 10}}});
    EXPECT_EQ(window().activeTouches()[0]->phase(), TouchPhase::Stationary) << "it has not moved";
    window().fingersMoved({{1, {11, 10}}, {3, {22, 10}}});
    window().fingersEnded({{1, {11, 10}}});
    window().fingersEnded({{3, {30, 10}}, {2, {111, 10}}});
    EXPECT_EQ(take(), (Lines{"a began 1 3 of 1 3", "b began 2 of 2", "a moved 3 of 1 3",
                             "b moved 2 of 2", "a moved 1 3 of 1 3", "a ended 1 of 1 3",
                             "b ended 2 of 2", "a ended 3 of 3"}));

    one.down({110, 10});
    two.down({120, 10}).moveTo({125, 10});
    one.moveTo({111, 10}).up();
    three.down({130, 10});
    two.up();
    three.up();
    one.tap({110, 10});
    EXPECT_EQ(take(), (Lines{"b began 1 of 1", "b moved 1 of 1", "b ended 1 of 1", "b began 1 of 1",
                             "b ended 1 of 1"}));
}

TEST_F(WindowTouches, IgnoresWhatNoFingerCanDo) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    constexpr double endless = std::numeric_limits<double>::infinity();
    window().fingersMoved({{1, {10, 10}}});
    window().fingersEnded({{1, {10, 10}}});
    window().fingersCancelled({{1, {}}});
    window().fingersBegan({{1, {none, 10}}, {2, {10, endless}}, {3, {1000, 10}}});
    window().fingersMoved({{1, {10, 10}}, {3, {10, 10}}});
    EXPECT_EQ(take(), Lines()) << "none of them is down";
    window().fingersBegan({{1, {10, 10}}, {1, {20, 10}}});
    window().fingersBegan({{1, {30, 10}}});
    window().fingersMoved({{1, {none, 10}}});
    window().fingersMoved({});
    EXPECT_EQ(window().activeTouches().front()->locationIn(nullptr), (gfx::Point{10, 10}));
    window().fingersEnded({{1, {none, none}}, {1, {15, 15}}});
    EXPECT_EQ(take(), (Lines{"a began 1 of 1", "a ended 1 of 1"}))
        << "a finger that leaves nowhere has left all the same";
    EXPECT_TRUE(window().activeTouches().empty());
}

TEST_F(WindowTouches, CancelsTheFingersNamedOrAllOrThoseOfAViewThatLeaves) {
    window().fingersBegan({{1, {10, 10}}, {2, {20, 10}}, {3, {30, 10}}});
    window().fingersCancelled({{2, {}}});
    window().fingersCancelled({});
    window().fingersEnded({{1, {10, 10}}});
    EXPECT_EQ(take(), (Lines{"a began 1 2 3 of 1 2 3", "a cancelled 2 of 1 2 3",
                             "a cancelled 1 3 of 1 3"}));

    window().fingersBegan({{1, {10, 10}}, {2, {110, 10}}});
    a->onTouch = [&](const std::string& phase, const TouchEvent& event) {
        if (phase != "cancelled") return;
        EXPECT_EQ(event.touches.front()->locationIn(a.get()), (gfx::Point{10, 10}));
        EXPECT_EQ(event.touches.front()->phase(), TouchPhase::Cancelled);
        a->removeFromSuperview();
    };
    a->removeFromSuperview();
    EXPECT_EQ(a->superview(), nullptr);
    window().fingersMoved({{1, {11, 10}}, {2, {111, 10}}});
    EXPECT_EQ(take(),
              (Lines{"a began 1 of 1", "b began 2 of 2", "a cancelled 1 of 1", "b moved 2 of 2"}));
}

TEST_F(WindowTouches, AViewMayBeDestroyedByItsOwnTouch) {
    for (const std::string phase : {"began", "moved", "ended", "cancelled"}) {
        auto holder = View::initWithFrame({0, 0, 100, 100});
        auto inner = LogView::make("inner", {0, 0, 100, 100}, lines);
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
        a->addSubview(holder);
        one.down({10, 10}).moveTo({20, 10});
        phase == "cancelled" ? one.cancel() : one.up();
        EXPECT_TRUE(watch.expired()) << phase;
        EXPECT_TRUE(window().activeTouches().empty()) << phase;
        const auto count = std::ranges::count_if(
            take(), [](const auto& line) { return line.starts_with("inner cancelled"); });
        EXPECT_EQ(count, phase == "ended" ? 0 : 1) << phase;
    }
}

TEST_F(WindowTouches, AHandlerMayTakeAwayAViewThatIsStillToBeTold) {
    a->onTouch = [&](const std::string& phase, const TouchEvent&) {
        if (phase == "moved") b->removeFromSuperview();
    };
    window().fingersBegan({{1, {10, 10}}, {2, {110, 10}}});
    window().fingersMoved({{1, {11, 10}}, {2, {111, 10}}});
    EXPECT_EQ(take(),
              (Lines{"a began 1 of 1", "b began 2 of 2", "a moved 1 of 1", "b cancelled 2 of 2"}));
    a->onTouch = [&](const std::string&, const TouchEvent&) { window().fingersCancelled({}); };
    window().fingersBegan({{3, {20, 10}}});
    EXPECT_EQ(take(), (Lines{"a began 3 of 1 3", "a cancelled 1 3 of 1 3"}));
}

TEST_F(WindowTouches, ARecognizerSeesItsSubtreeFirstAndTakesTheTouchesWhenItBegins) {
    const auto observer = std::make_shared<LogRecognizer>(lines, 1);
    observer->setCancelsTouches(false);
    root->addGestureRecognizer(observer);
    one.down({10, 10}).moveTo({20, 10}).up();
    EXPECT_EQ(take(), (Lines{"gesture began 1 active 1", "a began 1 of 1",
                             "gesture moved 1 active 1", "a moved 1 of 1",
                             "gesture ended 1 active 0", "gesture reset", "a ended 1 of 1"}));
    EXPECT_EQ(observer->state(), GestureState::Possible);

    root->removeGestureRecognizer(*observer);
    take();
    root->addGestureRecognizer(std::make_shared<LogRecognizer>(lines, 2));
    one.down({10, 10});
    two.down({110, 10}).moveTo({111, 10});
    take();
    one.moveTo({11, 10});
    EXPECT_EQ(take(),
              (Lines{"gesture moved 1 active 2", "a cancelled 1 of 1", "b cancelled 2 of 2"}));
    two.moveTo({112, 10});
    // A finger that joins belongs to the gesture as well.
    three.down({20, 10}).moveTo({21, 10}).up();
    one.up();
    two.up();
    EXPECT_EQ(take(),
              (Lines{"gesture moved 1 active 2", "gesture began 1 active 3",
                     "gesture moved 1 active 3", "gesture ended 1 active 2",
                     "gesture ended 1 active 1", "gesture ended 1 active 0", "gesture reset"}));
    one.tap({10, 10});
    EXPECT_EQ(take(), (Lines{"gesture began 1 active 1", "a began 1 of 1",
                             "gesture ended 1 active 0", "gesture reset", "a ended 1 of 1"}));
}

TEST_F(WindowTouches, ARecognizerThatIsTakenAwayIsLeftAlone) {
    auto recognizer = std::make_shared<LogRecognizer>(lines, 1);
    recognizer->setHandler([&](GestureRecognizer& gesture) {
        if (gesture.state() == GestureState::Began) a->removeGestureRecognizer(gesture);
    });
    a->addGestureRecognizer(recognizer);
    const std::weak_ptr<LogRecognizer> watch = recognizer;
    recognizer = nullptr;
    one.down({10, 10}).moveTo({20, 10}).moveTo({30, 10});
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(take(),
              (Lines{"gesture began 1 active 1", "a began 1 of 1", "gesture moved 1 active 1",
                     "gesture reset", "a moved 1 of 1", "a moved 1 of 1"}));
}

TEST_F(WindowTouches, AnEventEndsWithTheMainQueueDrainedAndTheMarkedViewsDisplayed) {
    window().display();
    window().takeDrawn();
    a->onTouch = [&](const std::string&, const TouchEvent&) {
        loop().async([&] { b->setBackgroundColor(gfx::makeColor(1, 0, 0)); });
    };
    one.down({10, 10});
    EXPECT_EQ(window().takeDrawn(), std::vector<gfx::Rect>{gfx::Rect(100, 0, 100, 100)});
}

}  // namespace

}  // namespace kalim::ui
