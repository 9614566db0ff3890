#include "kalimkit/ui/motion/Mix.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <numbers>

#include "kalimkit/ui/motion/SpringCurve.h"
#include "kalimkit/ui/motion/TimingCurve.h"

namespace kalim::ui {

namespace {

using gfx::AffineTransform;

void expectNear(const AffineTransform& actual, const AffineTransform& expected, const char* what) {
    EXPECT_NEAR(actual.a, expected.a, 1e-9) << what;
    EXPECT_NEAR(actual.b, expected.b, 1e-9) << what;
    EXPECT_NEAR(actual.c, expected.c, 1e-9) << what;
    EXPECT_NEAR(actual.d, expected.d, 1e-9) << what;
    EXPECT_NEAR(actual.tx, expected.tx, 1e-9) << what;
    EXPECT_NEAR(actual.ty, expected.ty, 1e-9) << what;
}

TEST(Mix, TurnsTurnTheShorterWayAndOthersGoComponentWise) {
    const auto turn = [](double degrees) {
        return AffineTransform::rotation(degrees * std::numbers::pi / 180);
    };
    const AffineTransform shear{1, 0, 1, 1, 0, 0};
    const struct {
        const char* what;
        AffineTransform from;
        AffineTransform to;
        AffineTransform middle;
    } cases[] = {
        {"a quarter", {}, turn(90), turn(45)},
        {"over the half turn", turn(170), turn(-170), turn(180)},
        {"growing on the way", turn(20), turn(40).scaled(3, 5), turn(30).scaled(2, 3)},
        {"moving", AffineTransform::translation(10, 0), AffineTransform::translation(0, 4),
         AffineTransform::translation(5, 2)},
        {"from nothing", AffineTransform::scaling(0, 0), turn(90),
         AffineTransform::scaling(0.5, 0.5).concat(turn(90))},
        {"shear", {}, shear, {1, 0, 0.5, 1, 0, 0}},
        {"a mirror", {}, AffineTransform::scaling(-1, 1), AffineTransform::scaling(0, 1)},
    };
    for (const auto& each : cases) {
        expectNear(mix(each.from, each.to, 0.5), each.middle, each.what);
        EXPECT_EQ(mix(each.from, each.to, 0), each.from) << each.what;
        EXPECT_EQ(mix(each.from, each.to, 1), each.to) << each.what;
    }
}

TEST(Mix, TransparentColorsLendNoHue) {
    const gfx::ColorRef red = gfx::makeColor(1, 0, 0);
    EXPECT_EQ(mix(gfx::Color{1, 0, 0, 1}, {0, 1, 0, 0}, 0.25), (gfx::Color{1, 0, 0, 0.75}));
    EXPECT_EQ(mix(gfx::Color{1, 0, 0, 1}, {0, 0, 1, 1}, 0.25), (gfx::Color{0.75, 0, 0.25, 1}));
    EXPECT_EQ(*mix(nullptr, red, 0.5), (gfx::Color{1, 0, 0, 0.5}));
    EXPECT_EQ(mix(red, nullptr, 1), nullptr);
    EXPECT_EQ(mix(gfx::Rect(0, 0, 10, 4), {2, 0, 0, 4}, 1.5), gfx::Rect(3, 0, 0, 4));
}

TEST(TimingCurve, EasesAtTheEndsThatItsNameSays) {
    const struct {
        TimingCurve curve;
        double quarter;
        double half;
    } cases[] = {
        // y(t) for the parameter t whose x(t) is the share.
        {TimingCurve::Linear, 0.25, 0.5},
        {TimingCurve::EaseIn, 0.0935, 0.3154},
        {TimingCurve::EaseOut, 0.3782, 0.6846},
        {TimingCurve::EaseInOut, 0.1292, 0.5},
    };
    for (const auto& each : cases) {
        EXPECT_NEAR(ease(each.curve, 0.25), each.quarter, 1e-3);
        EXPECT_NEAR(ease(each.curve, 0.5), each.half, 1e-3);
        EXPECT_EQ(ease(each.curve, -1), 0);
        EXPECT_EQ(ease(each.curve, 7), 1);
        EXPECT_EQ(ease(each.curve, std::numeric_limits<double>::quiet_NaN()), 0);
    }
}

TEST(SpringCurve, SettlesByTheEndAndSwingsOnlyWhenUnderdamped) {
    for (const double damping : {1.0, 0.6, 0.2, 0.0, 7.0}) {
        const Spring spring{damping, 0};
        double highest = 0;
        for (int step = 1; step < 100; ++step)
            highest = std::max(highest, springShare(spring, step / 100.0, 0.4));
        EXPECT_EQ(highest > 1.01, damping < 1) << damping;
        EXPECT_EQ(springShare(spring, 0, 0.4), 0);
        EXPECT_NEAR(springShare(spring, 0.999, 0.4), 1, 1e-4) << damping;
        EXPECT_EQ(springShare(spring, 1, 0.4), 1);
    }
    // Whole distances per second: after a thousandth of 0.4 s at 5 a second, 0.002 of the way.
    EXPECT_NEAR(springShare({1, 5}, 0.001, 0.4), 0.002, 1e-4);
    EXPECT_NEAR(springShare({0.5, 5}, 0.001, 0.4), 0.002, 2e-4);
}

}  // namespace

}  // namespace kalim::ui
