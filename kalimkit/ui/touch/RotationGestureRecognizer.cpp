#include "kalimkit/ui/touch/RotationGestureRecognizer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kalim::ui {

namespace {

bool holds(const std::vector<TouchRef>& touches, const TouchRef& touch) {
    return std::ranges::find(touches, touch) != touches.end();
}

}  // namespace

void RotationGestureRecognizer::drive(GestureState state, double rotation) {
    if (!isEnabled() || !std::isfinite(rotation)) return;
    _rotation = rotation;
    enter(state);
    settle();
}

void RotationGestureRecognizer::touchesBegan(const TouchEvent& /*event*/,
                                             const std::vector<TouchRef>& active) {
    if (!_first && state() == GestureState::Possible) track(active);
}

void RotationGestureRecognizer::touchesMoved(const TouchEvent& event,
                                             const std::vector<TouchRef>& /*active*/) {
    if (!_first || !(holds(event.touches, _first) || holds(event.touches, _second))) return;
    const std::optional<double> current = angle();
    if (!current) return;
    // The shorter way round, so that the sum runs on over a half turn.
    if (_lastAngle) _rotation += std::remainder(*current - *_lastAngle, 2 * std::numbers::pi);
    _lastAngle = current;
    if (isUnderWay()) {
        enter(GestureState::Changed);
    } else if (std::abs(_rotation) > slop) {
        _rotation = 0;
        enter(GestureState::Began);
    }
}

void RotationGestureRecognizer::touchesEnded(const TouchEvent& /*event*/,
                                             const std::vector<TouchRef>& active) {
    lose(GestureState::Ended, active);
}

void RotationGestureRecognizer::touchesCancelled(const TouchEvent& /*event*/,
                                                 const std::vector<TouchRef>& active) {
    lose(GestureState::Cancelled, active);
}

void RotationGestureRecognizer::reset() {
    _rotation = 0;
    _first = _second = nullptr;
}

std::optional<double> RotationGestureRecognizer::angle() const {
    const gfx::Point line = _second->locationIn(nullptr) - _first->locationIn(nullptr);
    if (line == gfx::Point{}) return std::nullopt;
    return std::atan2(line.y, line.x);
}

// Takes the two fingers that have been down longest.
void RotationGestureRecognizer::track(const std::vector<TouchRef>& active) {
    if (active.size() < 2) return;
    _first = active[0];
    _second = active[1];
    _rotation = 0;
    _lastAngle = angle();
}

// A gesture that has not begun goes on with the fingers that are left.
void RotationGestureRecognizer::lose(GestureState outcome, const std::vector<TouchRef>& active) {
    if (!_first || (holds(active, _first) && holds(active, _second))) return;
    _first = _second = nullptr;
    if (isUnderWay()) {
        enter(outcome);
    } else {
        track(active);
    }
}

}  // namespace kalim::ui
