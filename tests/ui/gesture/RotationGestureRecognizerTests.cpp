#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>

#include "tests/ui/Stage.h"

namespace kalim::ui {

namespace {

using test::Lines;

// Rotations in thousandths of a radian.
struct RotationTest : testing::Test, test::Stage {
    // Fingers 1 and 2 a hundred points around (200, 200), the second at this angle.
    static std::vector<Finger> fingersAt(double angle) {
        const gfx::Point arm{100 * std::cos(angle), 100 * std::sin(angle)};
        return {{1, gfx::Point{200, 200} - arm}, {2, gfx::Point{200, 200} + arm}};
    }
    void land(double angle) { window().fingersBegan(fingersAt(angle)); }
    void turnTo(double angle) { window().fingersMoved(fingersAt(angle)); }
    void lift(std::int64_t id) { window().fingersEnded({{id, {200, 200}}}); }
    void cancelAll() { window().fingersCancelled({}); }

    std::shared_ptr<RotationGestureRecognizer> gesture = add<RotationGestureRecognizer>(
        "it", [](RotationGestureRecognizer& it) { return rounded(it.rotation() * 1000); });
};

TEST_F(RotationTest, BeginsBeyondTheSlopAndMeasuresFromThere) {
    land(0.2);
    turnTo(0.249);
    EXPECT_EQ(take(), Lines());
    turnTo(0.26);
    turnTo(0.36);
    turnTo(0.16);
    lift(2);
    EXPECT_EQ(take(), (Lines{"it began 0", "it changed 100", "it changed -100", "it ended -100"}));
    EXPECT_EQ(gesture->state(), GestureState::Ended);
    lift(1);
    EXPECT_EQ(gesture->state(), GestureState::Possible);
    EXPECT_EQ(take(), Lines()) << "returning to Possible is not reported";

    // Spreading and moving alone is no rotation.
    test::pinchRotate(window(), {{200, 200}, 40, 1}, {{150, 300}, 130, 1}, 10);
    EXPECT_EQ(take(), Lines());
    cancelAll();
    test::pinchRotate(window(), {{200, 200}, 40, 1}, {{150, 300}, 130, 2}, 10);
    EXPECT_NEAR(gesture->rotation(), 0.9, 1e-9);
}

TEST_F(RotationTest, CountsOnPastHalfTurnsBothWays) {
    for (const double direction : {1.0, -1.0}) {
        // The line's angle jumps between pi and -pi on the way.
        const double start = 3.0 * direction;
        land(start);
        for (int step = 1; step <= 101; ++step)
            turnTo(start + direction * 0.1 * step);
        EXPECT_NEAR(gesture->rotation(), direction * 10, 1e-9);
        cancelAll();
    }
}

TEST_F(RotationTest, IsOfTwoFingersThoughOthersComeAndGo) {
    land(0);
    turnTo(0.1);
    three.down({10, 10}).moveTo({300, 10});
    turnTo(0.3);
    three.up();
    turnTo(0.4);
    EXPECT_EQ(take(), (Lines{"it began 0", "it changed 200", "it changed 300"}));
    three.down({10, 10});
    lift(1);
    EXPECT_EQ(take(), Lines{"it ended 300"});
    // The two that are left are not a new gesture.
    three.moveTo({300, 300}, 5);
    EXPECT_EQ(take(), Lines());
    lift(2);
    three.up();
    land(0);
    turnTo(0.04);
    lift(2);
    three.down({100, 296}).moveTo({104, 296});
    EXPECT_EQ(take(), Lines()) << "what the first pair had turned does not count";
    three.moveTo({120, 296});
    EXPECT_EQ(take(), Lines{"it began 0"});
}

TEST_F(RotationTest, FingersInOnePlaceHaveNoAngle) {
    window().fingersBegan({{1, {100, 100}}, {2, {100, 100}}});
    window().fingersMoved({{2, {100, 150}}});
    window().fingersMoved({{2, {100, 100}}});
    window().fingersMoved({{2, {100, 150}}});
    EXPECT_EQ(take(), Lines());
    window().fingersMoved({{2, {90, 150}}});
    EXPECT_EQ(take(), Lines{"it began 0"});
}

TEST_F(RotationTest, IsCancelledWithItsFingersOrWhenDisabled) {
    land(0);
    turnTo(0.1);
    window().fingersCancelled({{2, {}}});
    EXPECT_EQ(take(), (Lines{"it began 0", "it cancelled 0"}));
    cancelAll();
    EXPECT_EQ(gesture->state(), GestureState::Possible);

    land(0);
    turnTo(0.1);
    gesture->setEnabled(false);
    turnTo(0.5);
    gesture->setEnabled(true);
    turnTo(0.9);
    EXPECT_EQ(take(), (Lines{"it began 0", "it cancelled 0"})) << "these fingers are spent";
    cancelAll();
    gesture->setEnabled(false);
    land(0);
    gesture->setEnabled(true);
    three.down({10, 10});
    turnTo(0.9);
    EXPECT_EQ(take(), Lines()) << "it has not seen them land";
    cancelAll();
    land(0);
    turnTo(0.1);
    EXPECT_EQ(take(), Lines{"it began 0"});
}

TEST_F(RotationTest, CanBeDrivenWithoutFingers) {
    gesture->drive(GestureState::Began, 0);
    gesture->drive(GestureState::Changed, 0.5);
    gesture->drive(GestureState::Changed, std::numeric_limits<double>::infinity());
    gesture->drive(GestureState::Ended, 0.6);
    EXPECT_EQ(take(), (Lines{"it began 0", "it changed 500", "it ended 600"}));
    land(0);
    turnTo(0.3);
    EXPECT_EQ(take(), Lines{"it began 0"}) << "fingers work right after it";
    cancelAll();
    gesture->setEnabled(false);
    take();
    gesture->drive(GestureState::Began, 1);
    EXPECT_EQ(take(), Lines());
}

}  // namespace

}  // namespace kalim::ui
