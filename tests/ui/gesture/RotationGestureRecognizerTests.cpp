#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "tests/ui/gesture/GestureStage.h"

namespace kalim::ui {

namespace {

using Lines = test::GestureStage::Lines;
constexpr double pi = std::numbers::pi;

// Rotations in thousandths of a radian.
struct Stage : test::GestureStage {
    // Fingers 1 and 2 a hundred points around (200, 200), the second at this angle.
    static std::vector<Finger> fingersAt(double angle) {
        const gfx::Point arm{100 * std::cos(angle), 100 * std::sin(angle)};
        return {{1, gfx::Point{200, 200} - arm}, {2, gfx::Point{200, 200} + arm}};
    }
    void land(double angle) { window().fingersBegan(fingersAt(angle)); }
    void turnTo(double angle) { window().fingersMoved(fingersAt(angle)); }
    void lift(std::int64_t id) { window().fingersEnded({{id, {200, 200}}}); }

    std::shared_ptr<RotationGestureRecognizer> gesture = add<RotationGestureRecognizer>(
        "", [](RotationGestureRecognizer& gesture) { return rounded(gesture.rotation() * 1000); });
};

TEST(RotationGestureRecognizer, BeginsBeyondTheSlopAndMeasuresFromThere) {
    Stage stage;
    stage.land(0.2);
    stage.turnTo(0.249);
    EXPECT_EQ(stage.take(), Lines());
    stage.turnTo(0.26);
    stage.turnTo(0.36);
    stage.turnTo(0.16);
    stage.lift(2);
    EXPECT_EQ(stage.take(), (Lines{"began 0", "changed 100", "changed -100", "ended -100"}));
    EXPECT_EQ(stage.gesture->state(), GestureState::Ended);
    stage.lift(1);
    EXPECT_EQ(stage.gesture->state(), GestureState::Possible);
    EXPECT_EQ(stage.take(), Lines()) << "returning to Possible is not reported";
}

TEST(RotationGestureRecognizer, CountsOnPastHalfTurnsBothWays) {
    for (const double direction : {1.0, -1.0}) {
        Stage stage;
        // The line's angle jumps between pi and -pi on the way.
        const double start = 3.0 * direction;
        stage.land(start);
        for (int step = 1; step <= 101; ++step)
            stage.turnTo(start + direction * 0.1 * step);
        EXPECT_NEAR(stage.gesture->rotation(), direction * 10, 1e-9);
    }
}

TEST(RotationGestureRecognizer, SpreadingAndMovingAloneIsNoRotation) {
    Stage stage;
    test::pinchRotate(stage.window(), {{200, 200}, 40, 1}, {{150, 300}, 130, 1}, 10);
    EXPECT_EQ(stage.take(), Lines());
    stage.window().fingersCancelled({});
    test::pinchRotate(stage.window(), {{200, 200}, 40, 1}, {{150, 300}, 130, 2}, 10);
    EXPECT_NEAR(stage.gesture->rotation(), 0.9, 1e-9);
}

TEST(RotationGestureRecognizer, AThirdFingerChangesNothing) {
    Stage stage;
    test::Finger third(stage.window(), 3);
    stage.land(0);
    stage.turnTo(0.1);
    third.down({10, 10}).moveTo({300, 10});
    stage.turnTo(0.3);
    third.up();
    stage.turnTo(0.4);
    EXPECT_EQ(stage.take(), (Lines{"began 0", "changed 200", "changed 300"}));
    third.down({10, 10});
    stage.lift(1);
    EXPECT_EQ(stage.take(), Lines{"ended 300"});
    // The two that are left are not a new gesture.
    third.moveTo({300, 300}, 5);
    EXPECT_EQ(stage.take(), Lines());
    stage.lift(2);
    third.up();
    stage.land(0);
    stage.turnTo(0.1);
    EXPECT_EQ(stage.take(), Lines{"began 0"});
}

TEST(RotationGestureRecognizer, AFingerMayBeReplacedBeforeItBegins) {
    Stage stage;
    stage.land(0);
    stage.turnTo(0.04);
    stage.lift(2);
    test::Finger other(stage.window(), 5);
    other.down({100, 296}).moveTo({104, 296});
    EXPECT_EQ(stage.take(), Lines()) << "what the first pair had turned does not count";
    other.moveTo({120, 296});
    EXPECT_EQ(stage.take(), Lines{"began 0"});
}

TEST(RotationGestureRecognizer, FingersInOnePlaceHaveNoAngle) {
    Stage stage;
    stage.window().fingersBegan({{1, {100, 100}}, {2, {100, 100}}});
    stage.window().fingersMoved({{2, {100, 150}}});
    stage.window().fingersMoved({{2, {100, 100}}});
    stage.window().fingersMoved({{2, {100, 150}}});
    EXPECT_EQ(stage.take(), Lines());
    stage.window().fingersMoved({{2, {90, 150}}});
    EXPECT_EQ(stage.take(), Lines{"began 0"});
}

TEST(RotationGestureRecognizer, IsCancelledWithItsFingersOrWhenDisabled) {
    Stage stage;
    stage.land(0);
    stage.turnTo(0.1);
    stage.window().fingersCancelled({{2, {}}});
    EXPECT_EQ(stage.take(), (Lines{"began 0", "cancelled 0"}));
    stage.window().fingersCancelled({});
    EXPECT_EQ(stage.gesture->state(), GestureState::Possible);

    stage.land(0);
    stage.turnTo(0.1);
    stage.gesture->setEnabled(false);
    stage.turnTo(0.5);
    stage.gesture->setEnabled(true);
    stage.turnTo(0.9);
    EXPECT_EQ(stage.take(), (Lines{"began 0", "cancelled 0"})) << "these fingers are spent";
    stage.window().fingersCancelled({});
    stage.gesture->setEnabled(false);
    stage.land(0);
    stage.gesture->setEnabled(true);
    test::Finger(stage.window(), 3).down({10, 10});
    stage.turnTo(0.9);
    EXPECT_EQ(stage.take(), Lines()) << "it has not seen them land";
    stage.window().fingersCancelled({});
    stage.land(0);
    stage.turnTo(0.1);
    EXPECT_EQ(stage.take(), Lines{"began 0"});
}

TEST(RotationGestureRecognizer, CanBeDrivenWithoutFingers) {
    Stage stage;
    stage.gesture->drive(GestureState::Began, 0);
    stage.gesture->drive(GestureState::Changed, 0.5);
    stage.gesture->drive(GestureState::Changed, std::numeric_limits<double>::infinity());
    stage.gesture->drive(GestureState::Ended, 0.6);
    EXPECT_EQ(stage.take(), (Lines{"began 0", "changed 500", "ended 600"}));
    stage.land(0);
    stage.turnTo(pi / 10);
    EXPECT_EQ(stage.take(), Lines{"began 0"}) << "fingers work right after it";
    stage.window().fingersCancelled({});
    stage.gesture->setEnabled(false);
    stage.take();
    stage.gesture->drive(GestureState::Began, 1);
    EXPECT_EQ(stage.take(), Lines());
}

}  // namespace

}  // namespace kalim::ui
