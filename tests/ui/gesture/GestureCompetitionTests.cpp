#include <gtest/gtest.h>

#include <string_view>

#include "kalimkit/ui/gesture/LongPressGestureRecognizer.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/PinchGestureRecognizer.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "tests/ui/LogView.h"
#include "tests/ui/gesture/GestureStage.h"

namespace kalim::ui {

namespace {

using test::Finger;
using test::GestureStage;
using Lines = GestureStage::Lines;

// Two recognisers for two-finger gestures on one view, one more above.
struct Crowd : GestureStage {
    Crowd() {
        window().rootView()->addSubview(view);
        view->setMultipleTouchEnabled(true);
        rotation = add<RotationGestureRecognizer>("rotation", {}, view.get());
        pinch = add<PinchGestureRecognizer>("pinch", {}, view.get());
        pan = add<PanGestureRecognizer>("pan");
        pan->setMinimumNumberOfTouches(2);
        for (GestureRecognizer* gesture : all())
            gesture->setCancelsTouches(false);
    }
    std::vector<GestureRecognizer*> all() const { return {rotation.get(), pinch.get(), pan.get()}; }
    // Turns first, then spreads, then moves.
    void perform() {
        test::pinchRotate(window(), {{200, 200}, 50, 0}, {{200, 200}, 50, 0.1}, 1);
        window().fingersMoved({{1, {120, 200}}, {2, {280, 200}}});
        window().fingersMoved({{1, {120, 230}}, {2, {280, 230}}});
    }
    // Those that began, in order.
    std::string begun() {
        std::string names;
        for (const std::string& line : take()) {
            const std::size_t end = line.find(" began");
            if (end != std::string::npos) names += line.substr(0, end) + " ";
        }
        return names;
    }

    Lines touches;
    std::shared_ptr<test::LogView> view = test::LogView::make("view", {0, 0, 390, 844}, touches);
    std::shared_ptr<RotationGestureRecognizer> rotation;
    std::shared_ptr<PinchGestureRecognizer> pinch;
    std::shared_ptr<PanGestureRecognizer> pan;
};

TEST(GestureCompetition, TheFirstGestureExcludesTheOthersOfItsTouches) {
    Crowd stage;
    stage.perform();
    EXPECT_EQ(stage.begun(), "rotation ");
    stage.window().fingersCancelled({});
    stage.rotation->setEnabled(false);
    stage.perform();
    EXPECT_EQ(stage.begun(), "pinch ");
    // Fingers elsewhere are no concern of it.
    const auto other = stage.add<PanGestureRecognizer>("other", {}, nullptr);
    other->setRecognizesSimultaneously(true);
    Finger(stage.window(), 9).down({10, 10}).moveTo({50, 10});
    EXPECT_EQ(stage.begun(), "other ");
}

TEST(GestureCompetition, GesturesThatAllowItGoOnAtOnceAndLeaveTheTouchesAlone) {
    struct Tolerant : GestureDelegate {
        std::optional<bool> shouldRecognizeSimultaneouslyWith(
            const GestureRecognizer& one, const GestureRecognizer& other) override {
            return &one != refused && &other != refused;
        }
        const GestureRecognizer* refused = nullptr;
    };
    const auto delegate = std::make_shared<Tolerant>();
    for (const std::string_view way : {"property", "delegate", "refusal"}) {
        Crowd stage;
        if (way == "property") {
            for (GestureRecognizer* gesture : stage.all())
                gesture->setRecognizesSimultaneously(true);
        } else {
            stage.rotation->setDelegate(delegate);
            stage.pinch->setDelegate(delegate);
            delegate->refused = way == "refusal" ? stage.pinch.get() : nullptr;
        }
        stage.perform();
        EXPECT_EQ(stage.begun(), way == "refusal" ? "rotation pan " : "rotation pinch pan ") << way;
        EXPECT_EQ(stage.touches, (Lines{"view began 1 2 of 1 2", "view moved 1 2 of 1 2",
                                        "view moved 1 2 of 1 2", "view moved 1 2 of 1 2"}));
    }
}

TEST(GestureCompetition, TouchesThatTheDelegateRefusesAreNoneOfTheGesture) {
    struct Picky : GestureDelegate {
        bool shouldReceiveTouch(const GestureRecognizer&, const Touch& touch) override {
            return touch.locationIn(nullptr).x < 100;
        }
    };
    const auto delegate = std::make_shared<Picky>();
    GestureStage stage;
    const auto pan = stage.add<PanGestureRecognizer>("pan");
    pan->setDelegate(delegate);
    test::LogView::Lines touches;
    const auto view = test::LogView::make("view", {0, 0, 300, 300}, touches);
    view->setMultipleTouchEnabled(true);
    stage.window().rootView()->addSubview(view);
    Finger refused(stage.window(), 1);
    Finger taken(stage.window(), 2);
    // It is asked where the finger lands, and not again.
    refused.down({200, 10}).moveTo({50, 10});
    EXPECT_EQ(stage.take(), GestureStage::Lines{});
    taken.down({50, 50}).moveTo({70, 50}).up();
    EXPECT_EQ(stage.take(), (GestureStage::Lines{"pan began", "pan ended"}));
    refused.moveTo({60, 10}).up();
    EXPECT_EQ(stage.take(), GestureStage::Lines{});
    EXPECT_EQ(touches, (test::LogView::Lines{"view began 1 of 1", "view moved 1 of 1",
                                             "view began 2 of 1 2", "view cancelled 2 of 1 2",
                                             "view moved 1 of 1", "view ended 1 of 1"}));
}

struct Taps : GestureStage {
    std::shared_ptr<TapGestureRecognizer> single = add<TapGestureRecognizer>("single");
    std::shared_ptr<TapGestureRecognizer> twice = add<TapGestureRecognizer>("double");
    Finger finger{window()};

    Taps() {
        twice->setNumberOfTapsRequired(2);
        single->requireToFail(twice);
    }
};

TEST(GestureCompetition, ASingleTapWaitsUntilItCannotBecomeADoubleTap) {
    Taps stage;
    stage.finger.tap({100, 100});
    stage.wait(0.34);
    EXPECT_EQ(stage.take(), Lines());
    stage.wait(0.02);
    EXPECT_EQ(stage.take(), Lines{"single ended"});
    stage.finger.tap({100, 100}).tap({100, 100});
    EXPECT_EQ(stage.take(), Lines{"double ended"});
    stage.wait(1);
    EXPECT_EQ(stage.take(), Lines());
    // A second tap elsewhere settles the first at once, and waits itself.
    stage.finger.tap({100, 100}).down({200, 100});
    EXPECT_EQ(stage.take(), Lines{"single ended"});
    stage.finger.up();
    stage.wait(0.4);
    EXPECT_EQ(stage.take(), Lines{"single ended"});
    // What it waits for may be disabled or go.
    stage.finger.tap({100, 100});
    stage.twice->setEnabled(false);
    EXPECT_EQ(stage.take(), Lines{"single ended"});
    stage.finger.tap({100, 100});
    EXPECT_EQ(stage.take(), Lines{"single ended"}) << "nothing to wait for";
    stage.twice->setEnabled(true);
    stage.finger.tap({100, 100});
    stage.window().rootView()->removeGestureRecognizer(*std::exchange(stage.twice, nullptr));
    EXPECT_EQ(stage.take(), Lines{"single ended"});
}

TEST(GestureCompetition, AContinuousGestureMayWaitAsWell) {
    GestureStage stage;
    const auto pan = stage.add<PanGestureRecognizer>("pan", [](PanGestureRecognizer& pan) {
        return GestureStage::rounded(pan.translationIn(nullptr));
    });
    const auto press = stage.add<LongPressGestureRecognizer>("press");
    press->setAllowableMovement(30);
    pan->requireToFail(press);
    Finger finger(stage.window());
    finger.down({100, 100}).moveTo({120, 100});
    EXPECT_EQ(stage.take(), Lines());
    finger.moveTo({140, 100}).moveTo({150, 100}).up();
    EXPECT_EQ(stage.take(),
              (Lines{"pan began 0 0", "pan changed 20 0", "pan changed 30 0", "pan ended 30 0"}));
    finger.down({100, 100}).moveTo({120, 100});
    stage.wait(0.6);
    finger.moveTo({200, 100}).up();
    EXPECT_EQ(stage.take(), (Lines{"press began", "press changed", "press ended"}));
    finger.down({100, 100}).moveTo({120, 100}).up();
    EXPECT_EQ(stage.take(), (Lines{"pan began 0 0", "pan ended 0 0"})) << "decided by the lifting";
}

TEST(GestureCompetition, AGestureThatBeginsByTheClockTakesTheTouchesOfTheViews) {
    GestureStage stage;
    Lines touches;
    const auto view = test::LogView::make("view", {0, 0, 390, 844}, touches);
    stage.window().rootView()->addSubview(view);
    stage.add<LongPressGestureRecognizer>("press");
    Finger finger(stage.window());
    finger.down({100, 100});
    stage.wait(0.6);
    EXPECT_EQ(touches, (Lines{"view began 1 of 1", "view cancelled 1 of 1"}));
    finger.moveTo({150, 100}).up();
    EXPECT_EQ(stage.take(), (Lines{"press began", "press changed", "press ended"}));
    EXPECT_EQ(touches.size(), 2U);
}

TEST(GestureCompetition, TheDeeperOfTwoViewsWinsATap) {
    GestureStage stage;
    const auto inner = View::initWithFrame({0, 0, 100, 100});
    stage.window().rootView()->addSubview(inner);
    stage.add<TapGestureRecognizer>("outer");
    stage.add<TapGestureRecognizer>("inner", {}, inner.get());
    Finger(stage.window()).tap({50, 50}).tap({200, 50});
    EXPECT_EQ(stage.take(), (Lines{"inner ended", "outer ended"}));
}

TEST(GestureCompetition, AHandlerMayTakeAwayItsRecognizerAndItsView) {
    for (const std::string_view kind : {"tap", "pan", "press", "pinch"}) {
        GestureStage stage;
        auto view = View::initWithFrame({0, 0, 390, 844});
        stage.window().rootView()->addSubview(view);
        std::vector<std::weak_ptr<GestureRecognizer>> gestures = {
            stage.add<TapGestureRecognizer>("", {}, view.get()),
            stage.add<PanGestureRecognizer>("", {}, view.get()),
            stage.add<LongPressGestureRecognizer>("", {}, view.get()),
            stage.add<PinchGestureRecognizer>("", {}, view.get())};
        for (const auto& gesture : gestures) {
            gesture.lock()->setHandler([&](GestureRecognizer&) {
                // Taking it away reports that it is cancelled.
                const auto gone = std::exchange(view, nullptr);
                if (!gone) return;
                stage.lines.emplace_back(kind);
                for (const auto& other : gestures)
                    gone->removeGestureRecognizer(*other.lock());
                gone->removeFromSuperview();
            });
        }
        Finger one(stage.window(), 1), two(stage.window(), 2);
        one.down({100, 100});
        if (kind == "tap") one.up();
        if (kind == "pan") one.moveTo({150, 100});
        if (kind == "press") stage.wait(1);
        if (kind == "pinch") {
            // Both move, so that their middle does not.
            two.down({150, 100});
            stage.window().fingersMoved({{1, {90, 100}}, {2, {160, 100}}});
        }
        EXPECT_EQ(stage.take(), Lines{std::string(kind)});
        EXPECT_EQ(view, nullptr);
        for (const auto& gesture : gestures)
            EXPECT_TRUE(gesture.expired()) << kind;
    }
}

}  // namespace

}  // namespace kalim::ui
