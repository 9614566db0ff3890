#include "kalimkit/ui/motion/SpringCurve.h"

#include <algorithm>
#include <cmath>

namespace kalim::ui {

namespace {

constexpr double leastDamping = 0.05;
// The swing dies away as e to the minus this power of the share of time. A critically damped spring
// is then a thousandth short of its target at the end.
constexpr double decay = 9.2334;

// The damped oscillator's displacement, from 1 towards 0, that begins with this velocity.
double displacement(double damping, double velocity, double share) {
    const double envelope = std::exp(-decay * share);
    const double slope = decay - velocity;
    if (damping == 1) return envelope * (1 + slope * share);
    const double frequency = decay / damping * std::sqrt(1 - damping * damping);
    const double phase = frequency * share;
    return envelope * (std::cos(phase) + slope / frequency * std::sin(phase));
}

}  // namespace

double springShare(const Spring& spring, double share, double duration) {
    if (!(share > 0)) return 0;
    if (share >= 1) return 1;
    const double damping =
        std::isnan(spring.dampingRatio) ? 1 : std::clamp(spring.dampingRatio, leastDamping, 1.0);
    const double velocity =
        std::isfinite(spring.initialVelocity) ? spring.initialVelocity * duration : 0;
    // What is missing at the end is made up for all along, so that nothing jumps there.
    return (1 - displacement(damping, velocity, share)) / (1 - displacement(damping, velocity, 1));
}

}  // namespace kalim::ui
