#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"

#include <cmath>
#include <numbers>

namespace kalim::ui {

void RotationGestureRecognizer::drive(GestureState state, double rotation) {
    if (!isEnabled() || !std::isfinite(rotation)) return;
    _rotation = rotation;
    GestureRecognizer::drive(state);
}

void RotationGestureRecognizer::fingersFound() {
    _rotation = 0;
    _lastAngle = angle();
}

void RotationGestureRecognizer::fingersMoved() {
    const std::optional<double> current = angle();
    if (!current) return;
    // The shorter way round, so that the sum runs on over a half turn.
    if (_lastAngle) _rotation += std::remainder(*current - *_lastAngle, 2 * std::numbers::pi);
    _lastAngle = current;
    if (isUnderWay()) {
        enter(GestureState::Changed);
    } else if (std::abs(_rotation) > slop) {
        recognize(GestureState::Began);
    }
}

void RotationGestureRecognizer::reset() {
    TwoFingerGestureRecognizer::reset();
    _rotation = 0;
}

std::optional<double> RotationGestureRecognizer::angle() const {
    const gfx::Point arm = line();
    if (arm == gfx::Point{}) return std::nullopt;
    return std::atan2(arm.y, arm.x);
}

}  // namespace kalim::ui
