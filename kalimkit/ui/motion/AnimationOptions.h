#pragma once

#include <optional>

#include "kalimkit/ui/motion/TimingCurve.h"

namespace kalim::ui {

// A damped spring in place of a curve. It settles by the end of the duration.
struct Spring {
    // 1 does not overshoot, smaller ratios swing more. Ratios outside of 0.05 to 1 count as the
    // nearer of the two.
    double dampingRatio = 1;
    // Counts whole distances per second, towards the target.
    double initialVelocity = 0;
};

// How the changes of one View::animate are shown. Seconds; what is negative or not finite counts
// as 0.
struct AnimationOptions {
    double duration = 0.25;
    double delay = 0;
    TimingCurve curve = TimingCurve::EaseInOut;
    // Whether the animated views take touches while it runs.
    bool allowsUserInteraction = false;
    // A spring takes the place of the curve.
    std::optional<Spring> spring = std::nullopt;
};

}  // namespace kalim::ui
