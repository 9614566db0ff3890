#include <gtest/gtest.h>

#include <string_view>

#include "kalimkit/ui/gesture/LongPressGestureRecognizer.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/PinchGestureRecognizer.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

using test::Lines;

struct GestureCompetition : testing::Test, test::Stage {};

// Two recognisers for two-finger gestures on one view, one more above.
struct Crowd : test::Stage {
    Crowd() {
        root->addSubview(view);
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

struct Delegate : GestureDelegate {
    std::optional<bool> shouldRecognizeSimultaneouslyWith(const GestureRecognizer& a,
                                                          const GestureRecognizer& b) override {
        return &a != refused && &b != refused;
    }
    bool shouldReceiveTouch(const GestureRecognizer&, const Touch& touch) override {
        return touch.locationIn(nullptr).x < fingersLeftOf;
    }
    const GestureRecognizer* refused = nullptr;
    double fingersLeftOf = 1000;
};

TEST_F(GestureCompetition, TheFirstGestureExcludesTheOthersOfItsTouchesUnlessItAllowsThem) {
    const auto delegate = std::make_shared<Delegate>();
    for (const std::string_view way : {"alone", "property", "delegate", "refusal"}) {
        Crowd crowd;
        if (way == "property") {
            for (GestureRecognizer* gesture : crowd.all())
                gesture->setRecognizesSimultaneously(true);
        } else if (way != "alone") {
            crowd.rotation->setDelegate(delegate);
            crowd.pinch->setDelegate(delegate);
            delegate->refused = way == "refusal" ? crowd.pinch.get() : nullptr;
        }
        crowd.perform();
        EXPECT_EQ(crowd.begun(), way == "alone"     ? "rotation "
                                 : way == "refusal" ? "rotation pan "
                                                    : "rotation pinch pan ")
            << way;
        EXPECT_EQ(crowd.touches, (Lines{"view began 1 2 of 1 2", "view moved 1 2 of 1 2",
                                        "view moved 1 2 of 1 2", "view moved 1 2 of 1 2"}));
    }
    Crowd crowd;
    crowd.rotation->setEnabled(false);
    crowd.perform();
    EXPECT_EQ(crowd.begun(), "pinch ");
    // Fingers elsewhere are no concern of it.
    crowd.add<PanGestureRecognizer>("other")->setRecognizesSimultaneously(true);
    test::Finger(crowd.window(), 9).down({10, 10}).moveTo({50, 10});
    EXPECT_EQ(crowd.begun(), "other ");
}

TEST_F(GestureCompetition, TouchesThatTheDelegateRefusesAreNoneOfTheGesture) {
    const auto delegate = std::make_shared<Delegate>();
    delegate->fingersLeftOf = 100;
    add<PanGestureRecognizer>("pan")->setDelegate(delegate);
    Lines touches;
    const auto view = test::LogView::make("view", {0, 0, 300, 300}, touches);
    view->setMultipleTouchEnabled(true);
    root->addSubview(view);
    // It is asked where the finger lands, and not again.
    one.down({200, 10}).moveTo({50, 10});
    EXPECT_EQ(take(), Lines());
    two.down({50, 50}).moveTo({70, 50}).up();
    EXPECT_EQ(take(), (Lines{"pan began", "pan ended"}));
    one.moveTo({60, 10}).up();
    EXPECT_EQ(take(), Lines());
    EXPECT_EQ(touches,
              (Lines{"view began 1 of 1", "view moved 1 of 1", "view began 2 of 1 2",
                     "view cancelled 2 of 1 2", "view moved 1 of 1", "view ended 1 of 1"}));
}

TEST_F(GestureCompetition, ASingleTapWaitsUntilItCannotBecomeADoubleTap) {
    const auto single = add<TapGestureRecognizer>("single");
    auto twice = add<TapGestureRecognizer>("double");
    twice->setNumberOfTapsRequired(2);
    single->requireToFail(twice);
    one.tap({100, 100});
    wait(0.34);
    EXPECT_EQ(take(), Lines());
    wait(0.02);
    EXPECT_EQ(take(), Lines{"single ended"});
    one.tap({100, 100}).tap({100, 100});
    EXPECT_EQ(take(), Lines{"double ended"});
    wait(1);
    EXPECT_EQ(take(), Lines());
    // A second tap elsewhere settles the first at once, and waits itself.
    one.tap({100, 100}).down({200, 100});
    EXPECT_EQ(take(), Lines{"single ended"});
    one.up();
    wait(0.4);
    EXPECT_EQ(take(), Lines{"single ended"});
    // What it waits for may be disabled or go.
    one.tap({100, 100});
    twice->setEnabled(false);
    EXPECT_EQ(take(), Lines{"single ended"});
    one.tap({100, 100});
    EXPECT_EQ(take(), Lines{"single ended"}) << "nothing to wait for";
    twice->setEnabled(true);
    one.tap({100, 100});
    root->removeGestureRecognizer(*std::exchange(twice, nullptr));
    EXPECT_EQ(take(), Lines{"single ended"});
}

TEST_F(GestureCompetition, AContinuousGestureMayWaitAsWell) {
    const auto pan = add<PanGestureRecognizer>(
        "pan", [](PanGestureRecognizer& pan) { return rounded(pan.translationIn(nullptr)); });
    const auto press = add<LongPressGestureRecognizer>("press");
    press->setAllowableMovement(30);
    pan->requireToFail(press);
    one.down({100, 100}).moveTo({120, 100});
    EXPECT_EQ(take(), Lines());
    one.moveTo({140, 100}).moveTo({150, 100}).up();
    EXPECT_EQ(take(),
              (Lines{"pan began 0 0", "pan changed 20 0", "pan changed 30 0", "pan ended 30 0"}));
    one.down({100, 100}).moveTo({120, 100});
    wait(0.6);
    one.moveTo({200, 100}).up();
    EXPECT_EQ(take(), (Lines{"press began", "press changed", "press ended"}));
    one.down({100, 100}).moveTo({120, 100}).up();
    EXPECT_EQ(take(), (Lines{"pan began 0 0", "pan ended 0 0"})) << "decided by the lifting";
}

TEST_F(GestureCompetition, TheDeeperOfTwoViewsWinsATap) {
    add<TapGestureRecognizer>("outer");
    add<TapGestureRecognizer>("inner", {}, addView({0, 0, 100, 100}).get());
    one.tap({50, 50}).tap({200, 50});
    EXPECT_EQ(take(), (Lines{"inner ended", "outer ended"}));
}

TEST_F(GestureCompetition, AHandlerMayTakeAwayItsRecognizerAndItsView) {
    for (const std::string kind : {"tap", "pan", "press", "pinch"}) {
        test::Stage stage;
        auto view = stage.addView({0, 0, 390, 844});
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
                stage.lines.push_back(kind);
                for (const auto& other : gestures)
                    gone->removeGestureRecognizer(*other.lock());
                gone->removeFromSuperview();
            });
        }
        stage.one.down({100, 100});
        if (kind == "tap") stage.one.up();
        if (kind == "pan") stage.one.moveTo({150, 100});
        if (kind == "press") stage.wait(1);
        if (kind == "pinch") {
            // Both move, so that their middle does not.
            stage.two.down({150, 100});
            stage.window().fingersMoved({{1, {90, 100}}, {2, {160, 100}}});
        }
        EXPECT_EQ(stage.take(), Lines{kind});
        EXPECT_EQ(view, nullptr);
        for (const auto& gesture : gestures)
            EXPECT_TRUE(gesture.expired()) << kind;
    }
}

}  // namespace

}  // namespace kalim::ui
