#include <gtest/gtest.h>

#include "kalimkit/ui/gesture/LongPressGestureRecognizer.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/PinchGestureRecognizer.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

using test::Lines;

struct GestureRecognizers : testing::Test, test::Stage {};

TEST_F(GestureRecognizers, ATapIsShortAndStaysInPlace) {
    const struct {
        double seconds;
        gfx::Point way;
        bool isTap;
    } cases[] = {{0.1, {0, 0}, true}, {0.74, {0, 0}, true}, {0.76, {0, 0}, false},
                 {0.1, {6, 7}, true}, {0.1, {6, 8}, false}, {0.1, {-10, 0}, false}};
    const auto gesture = add<TapGestureRecognizer>("tap");
    for (const auto& tap : cases) {
        one.down({100, 100});
        wait(tap.seconds);
        one.moveTo(gfx::Point{100, 100} + tap.way).moveTo({100, 100}).up();
        EXPECT_EQ(take(), tap.isTap ? Lines{"tap ended"} : Lines()) << tap.seconds;
        one.tap({50, 60});
        EXPECT_EQ(take(), Lines{"tap ended"}) << "ready for the next";
        EXPECT_EQ(gesture->locationIn(nullptr), (gfx::Point{50, 60}));
    }
}

TEST_F(GestureRecognizers, DoubleTapsAreCloseInTimeAndPlace) {
    const struct {
        double pause;
        gfx::Point second;
        bool isDouble;
    } cases[] = {{0.34, {100, 100}, true},
                 {0.36, {100, 100}, false},
                 {0.1, {144, 100}, true},
                 {0.1, {145, 100}, false}};
    add<TapGestureRecognizer>("double")->setNumberOfTapsRequired(2);
    for (const auto& taps : cases) {
        wait(1);
        one.tap({100, 100});
        wait(taps.pause);
        one.tap(taps.second);
        EXPECT_EQ(take(), taps.isDouble ? Lines{"double ended"} : Lines()) << taps.pause;
        // The second of two that do not belong together is the first of the next two.
        one.tap(taps.second);
        EXPECT_EQ(take(), taps.isDouble ? Lines() : Lines{"double ended"}) << taps.pause;
    }
}

TEST_F(GestureRecognizers, ATapCountsTheFingersThatTapTogether) {
    const auto gesture = add<TapGestureRecognizer>("tap");
    gesture->setNumberOfTouchesRequired(2);
    one.tap({100, 100});
    EXPECT_EQ(take(), Lines()) << "one is too few";
    one.down({100, 100});
    two.down({120, 100});
    one.up();
    two.up();
    EXPECT_EQ(take(), Lines{"tap ended"});
    EXPECT_EQ(gesture->locationIn(nullptr), (gfx::Point{110, 100}));
    one.down({100, 100});
    two.down({120, 100});
    three.down({140, 100});
    for (test::Finger* finger : {&one, &two, &three})
        finger->up();
    EXPECT_EQ(take(), Lines()) << "three are too many";
    one.down({100, 100});
    two.down({120, 100});
    one.up();
    three.down({140, 100}).up();
    two.up();
    EXPECT_EQ(take(), Lines()) << "they must be down at once";
}

struct PanGesture : GestureRecognizers {
    std::shared_ptr<PanGestureRecognizer> pan = add<PanGestureRecognizer>(
        "pan", [](PanGestureRecognizer& pan) { return rounded(pan.translationIn(nullptr)); });
};

TEST_F(PanGesture, BeginsAtTheSlopAndMeasuresFromThere) {
    one.down({100, 100}).moveTo({109, 100});
    EXPECT_EQ(take(), Lines());
    one.moveTo({110, 100}).moveTo({130, 95});
    EXPECT_EQ(take(), (Lines{"pan began 0 0", "pan changed 20 -5"}));
    pan->setTranslationIn({100, 0}, nullptr);
    one.moveTo({131, 96}).up();
    EXPECT_EQ(take(), (Lines{"pan changed 101 1", "pan ended 101 1"}));
    one.down({100, 100}).moveTo({100, 120}).cancel();
    EXPECT_EQ(take(), (Lines{"pan began 0 0", "pan cancelled 0 0"}));

    // Fingers that join or leave make it neither jump nor begin.
    one.down({100, 100});
    two.down({300, 300}).up();
    EXPECT_EQ(take(), Lines());
    one.moveTo({120, 100}).moveTo({130, 100});
    two.down({300, 300});
    one.moveTo({150, 100}).up();
    two.moveTo({300, 350}).up();
    EXPECT_EQ(take(), (Lines{"pan began 0 0", "pan changed 10 0", "pan changed 20 0",
                             "pan changed 20 50", "pan ended 20 50"}));
}

TEST_F(PanGesture, KeepsToItsNumberOfFingers) {
    pan->setMinimumNumberOfTouches(2);
    pan->setMaximumNumberOfTouches(2);
    one.down({100, 100}).moveTo({150, 100});
    two.down({200, 100});
    EXPECT_EQ(take(), Lines()) << "what one finger did does not count";
    two.moveTo({240, 100});
    three.down({300, 300}).moveTo({0, 0});
    one.moveTo({160, 100}).up();
    two.moveTo({300, 100});
    three.up();
    two.moveTo({350, 100}).up();
    EXPECT_EQ(take(),
              (Lines{"pan began 0 0", "pan changed 5 0", "pan changed 35 0", "pan ended 35 0"}));
    one.down({100, 100});
    two.down({200, 100});
    three.down({300, 300});
    one.moveTo({200, 200});
    EXPECT_EQ(take(), Lines()) << "three are too many to begin with";
}

TEST_F(PanGesture, VelocityIsThatOfTheLastTenthOfASecond) {
    one.down({100, 100});
    for (int step = 1; step <= 10; ++step) {
        wait(0.02);
        // Slow at first, then 500 points a second.
        one.moveTo({step < 5 ? 100.0 + step : 104.0 + 10 * (step - 4), 100});
    }
    EXPECT_NEAR(pan->velocityIn(nullptr).x, 500, 1e-6);
    const auto half = addView({0, 0, 10, 10});
    half->setTransform(gfx::AffineTransform::scaling(0.5, 0.5));
    EXPECT_NEAR(pan->velocityIn(half.get()).x, 1000, 1e-6);
    wait(0.11);
    EXPECT_EQ(pan->velocityIn(nullptr), gfx::Point());
}

TEST_F(GestureRecognizers, APinchIsTheRatioOfDistancesSinceItBegan) {
    const auto pinch = add<PinchGestureRecognizer>(
        "pinch", [](PinchGestureRecognizer& pinch) { return rounded(100 * pinch.scale()); });
    one.down({100, 100});
    two.down({192, 100}).moveTo({199, 100});
    EXPECT_EQ(take(), Lines()) << "seven points";
    two.moveTo({200, 100}).moveTo({300, 100});
    EXPECT_EQ(pinch->locationIn(nullptr), (gfx::Point{200, 100}));
    pinch->setScale(3);
    pinch->setScale(0);
    one.moveTo({200, 100});
    two.moveTo({200, 100});
    one.up();
    EXPECT_EQ(take(), (Lines{"pinch began 100", "pinch changed 200", "pinch changed 150",
                             "pinch changed 2", "pinch ended 2"}));
    two.up();
    pinch->drive(GestureState::Changed, 1.5);
    EXPECT_EQ(take(), Lines{"pinch changed 150"});
    EXPECT_EQ(pinch->locationIn(nullptr), (gfx::Point{195, 422})) << "the middle of its view";
}

TEST_F(GestureRecognizers, ALongPressBeginsByTheClockWhileTheFingerRests) {
    Lines touches;
    root->addSubview(test::LogView::make("view", root->bounds(), touches));
    const auto press = add<LongPressGestureRecognizer>("press");
    one.down({100, 100});
    wait(0.49);
    EXPECT_EQ(take(), Lines());
    wait(0.02);
    EXPECT_EQ(touches, (Lines{"view began 1 of 1", "view cancelled 1 of 1"}));
    one.moveTo({300, 100}).up();
    EXPECT_EQ(touches.size(), 2U) << "it has taken the touch of the view";
    EXPECT_EQ(take(), (Lines{"press began", "press changed", "press ended"}));
    one.down({100, 100}).moveTo({110, 100});
    wait(0.51);
    one.up();
    EXPECT_EQ(take(), (Lines{"press began", "press ended"})) << "a little way is allowed";
    one.down({100, 100}).moveTo({111, 100});
    wait(1);
    one.up().down({100, 100});
    wait(0.3);
    one.up().down({100, 100});
    wait(0.3);
    two.down({200, 100});
    wait(1);
    one.up();
    two.up();
    EXPECT_EQ(take(), Lines()) << "strayed, too short, two fingers";
    one.down({100, 100});
    press->setEnabled(false);
    press->setEnabled(true);
    wait(1);
    EXPECT_EQ(take(), Lines());
}

}  // namespace

}  // namespace kalim::ui
