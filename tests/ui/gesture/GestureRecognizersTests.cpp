#include <gtest/gtest.h>

#include "kalimkit/ui/gesture/LongPressGestureRecognizer.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/PinchGestureRecognizer.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "tests/ui/gesture/GestureStage.h"

namespace kalim::ui {

namespace {

using test::Finger;
using test::GestureStage;
using Lines = GestureStage::Lines;

TEST(TapGestureRecognizer, ATapIsShortAndStaysInPlace) {
    const struct {
        double seconds;
        gfx::Point way;
        bool isTap;
    } cases[] = {{0.1, {0, 0}, true}, {0.74, {0, 0}, true}, {0.76, {0, 0}, false},
                 {0.1, {6, 7}, true}, {0.1, {6, 8}, false}, {0.1, {-10, 0}, false}};
    for (const auto& tap : cases) {
        GestureStage stage;
        const auto gesture = stage.add<TapGestureRecognizer>("tap");
        Finger finger(stage.window());
        finger.down({100, 100});
        stage.wait(tap.seconds);
        finger.moveTo(gfx::Point{100, 100} + tap.way).moveTo({100, 100}).up();
        EXPECT_EQ(stage.take(), tap.isTap ? Lines{"tap ended"} : Lines()) << tap.seconds;
        finger.tap({50, 60});
        EXPECT_EQ(stage.take(), Lines{"tap ended"}) << "ready for the next";
        EXPECT_EQ(gesture->locationIn(nullptr), (gfx::Point{50, 60}));
    }
}

TEST(TapGestureRecognizer, DoubleTapsAreCloseInTimeAndPlace) {
    const struct {
        double pause;
        gfx::Point second;
        bool isDouble;
    } cases[] = {{0.34, {100, 100}, true},
                 {0.36, {100, 100}, false},
                 {0.1, {144, 100}, true},
                 {0.1, {145, 100}, false}};
    for (const auto& taps : cases) {
        GestureStage stage;
        stage.add<TapGestureRecognizer>("double")->setNumberOfTapsRequired(2);
        Finger finger(stage.window());
        finger.tap({100, 100});
        stage.wait(taps.pause);
        finger.tap(taps.second);
        EXPECT_EQ(stage.take(), taps.isDouble ? Lines{"double ended"} : Lines()) << taps.pause;
        // The second of two that do not belong together is the first of the next two.
        finger.tap(taps.second);
        EXPECT_EQ(stage.take(), taps.isDouble ? Lines() : Lines{"double ended"}) << taps.pause;
    }
}

TEST(TapGestureRecognizer, CountsTheFingersThatTapTogether) {
    GestureStage stage;
    const auto gesture = stage.add<TapGestureRecognizer>("tap");
    gesture->setNumberOfTouchesRequired(2);
    Window& window = stage.window();
    Finger one(window, 1), two(window, 2), three(window, 3);
    one.tap({100, 100});
    EXPECT_EQ(stage.take(), Lines()) << "one is too few";
    one.down({100, 100});
    two.down({120, 100});
    one.up();
    two.up();
    EXPECT_EQ(stage.take(), Lines{"tap ended"});
    EXPECT_EQ(gesture->locationIn(nullptr), (gfx::Point{110, 100}));
    one.down({100, 100});
    two.down({120, 100});
    three.down({140, 100});
    for (Finger* finger : {&one, &two, &three})
        finger->up();
    EXPECT_EQ(stage.take(), Lines()) << "three are too many";
    one.down({100, 100});
    two.down({120, 100});
    one.up();
    three.down({140, 100}).up();
    two.up();
    EXPECT_EQ(stage.take(), Lines()) << "they must be down at once";
}

struct PanStage : GestureStage {
    std::shared_ptr<PanGestureRecognizer> pan = add<PanGestureRecognizer>(
        "pan", [](PanGestureRecognizer& pan) { return rounded(pan.translationIn(nullptr)); });
};

TEST(PanGestureRecognizer, BeginsAtTheSlopAndMeasuresFromThere) {
    PanStage stage;
    Finger finger(stage.window());
    finger.down({100, 100}).moveTo({109, 100});
    EXPECT_EQ(stage.take(), Lines());
    finger.moveTo({110, 100}).moveTo({130, 95});
    EXPECT_EQ(stage.take(), (Lines{"pan began 0 0", "pan changed 20 -5"}));
    stage.pan->setTranslationIn({100, 0}, nullptr);
    finger.moveTo({131, 96}).up();
    EXPECT_EQ(stage.take(), (Lines{"pan changed 101 1", "pan ended 101 1"}));
    finger.down({100, 100}).moveTo({100, 120}).cancel();
    EXPECT_EQ(stage.take(), (Lines{"pan began 0 0", "pan cancelled 0 0"}));
}

TEST(PanGestureRecognizer, FingersThatJoinOrLeaveMakeItNeitherJumpNorBegin) {
    PanStage stage;
    Finger one(stage.window(), 1), two(stage.window(), 2);
    one.down({100, 100});
    two.down({300, 300}).up();
    EXPECT_EQ(stage.take(), Lines());
    one.moveTo({120, 100}).moveTo({130, 100});
    two.down({300, 300});
    one.moveTo({150, 100});
    one.up();
    two.moveTo({300, 350}).up();
    EXPECT_EQ(stage.take(), (Lines{"pan began 0 0", "pan changed 10 0", "pan changed 20 0",
                                   "pan changed 20 50", "pan ended 20 50"}));
}

TEST(PanGestureRecognizer, KeepsToItsNumberOfFingers) {
    PanStage stage;
    stage.pan->setMinimumNumberOfTouches(2);
    stage.pan->setMaximumNumberOfTouches(2);
    Finger one(stage.window(), 1), two(stage.window(), 2), three(stage.window(), 3);
    one.down({100, 100}).moveTo({150, 100});
    two.down({200, 100});
    EXPECT_EQ(stage.take(), Lines()) << "what one finger did does not count";
    two.moveTo({240, 100});
    three.down({300, 300}).moveTo({0, 0});
    one.moveTo({160, 100}).up();
    two.moveTo({300, 100});
    three.up();
    two.moveTo({350, 100}).up();
    EXPECT_EQ(stage.take(),
              (Lines{"pan began 0 0", "pan changed 5 0", "pan changed 35 0", "pan ended 35 0"}));
    one.down({100, 100});
    two.down({200, 100});
    three.down({300, 300});
    one.moveTo({200, 200});
    EXPECT_EQ(stage.take(), Lines()) << "three are too many to begin with";
}

TEST(PanGestureRecognizer, VelocityIsThatOfTheLastTenthOfASecond) {
    PanStage stage;
    Finger finger(stage.window());
    finger.down({100, 100});
    for (int step = 1; step <= 10; ++step) {
        stage.wait(0.02);
        // Slow at first, then 500 points a second.
        finger.moveTo({step < 5 ? 100.0 + step : 104.0 + 10 * (step - 4), 100});
    }
    EXPECT_NEAR(stage.pan->velocityIn(nullptr).x, 500, 1e-6);
    const auto half = View::initWithFrame({0, 0, 10, 10});
    half->setTransform(gfx::AffineTransform::scaling(0.5, 0.5));
    stage.window().rootView()->addSubview(half);
    EXPECT_NEAR(stage.pan->velocityIn(half.get()).x, 1000, 1e-6);
    stage.wait(0.11);
    EXPECT_EQ(stage.pan->velocityIn(nullptr), gfx::Point());
}

TEST(PinchGestureRecognizer, ScaleIsTheRatioOfDistancesSinceItBegan) {
    GestureStage stage;
    const auto pinch = stage.add<PinchGestureRecognizer>(
        "pinch",
        [](PinchGestureRecognizer& pinch) { return GestureStage::rounded(100 * pinch.scale()); });
    Finger one(stage.window(), 1), two(stage.window(), 2);
    one.down({100, 100});
    two.down({192, 100}).moveTo({199, 100});
    EXPECT_EQ(stage.take(), Lines()) << "seven points";
    two.moveTo({200, 100}).moveTo({300, 100});
    EXPECT_EQ(pinch->locationIn(nullptr), (gfx::Point{200, 100}));
    pinch->setScale(3);
    pinch->setScale(0);
    one.moveTo({200, 100});
    two.moveTo({200, 100});
    one.up();
    EXPECT_EQ(stage.take(), (Lines{"pinch began 100", "pinch changed 200", "pinch changed 150",
                                   "pinch changed 2", "pinch ended 2"}));
    two.up();
    pinch->drive(GestureState::Changed, 1.5);
    EXPECT_EQ(stage.take(), Lines{"pinch changed 150"});
    EXPECT_EQ(pinch->locationIn(nullptr), (gfx::Point{195, 422})) << "the middle of its view";
}

TEST(LongPressGestureRecognizer, BeginsByTheClockWhileTheFingerRests) {
    GestureStage stage;
    const auto press = stage.add<LongPressGestureRecognizer>("press");
    Finger finger(stage.window()), other(stage.window(), 2);
    finger.down({100, 100}).moveTo({110, 100});
    stage.wait(0.49);
    EXPECT_EQ(stage.take(), Lines());
    stage.wait(0.02);
    finger.moveTo({300, 100}).up();
    EXPECT_EQ(stage.take(), (Lines{"press began", "press changed", "press ended"}));
    finger.down({100, 100}).moveTo({111, 100});
    stage.wait(1);
    finger.up().down({100, 100});
    stage.wait(0.3);
    finger.up().down({100, 100});
    stage.wait(0.3);
    other.down({200, 100});
    stage.wait(1);
    finger.up();
    other.up();
    EXPECT_EQ(stage.take(), Lines()) << "strayed, too short, two fingers";
    finger.down({100, 100});
    press->setEnabled(false);
    press->setEnabled(true);
    stage.wait(1);
    EXPECT_EQ(stage.take(), Lines());
}

}  // namespace

}  // namespace kalim::ui
