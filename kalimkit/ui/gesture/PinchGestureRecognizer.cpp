#include "kalimkit/ui/gesture/PinchGestureRecognizer.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

namespace {

bool isScale(double scale) {
    return std::isfinite(scale) && scale > 0;
}

Time now() {
    return Environment::current().runLoop().now();
}

}  // namespace

void PinchGestureRecognizer::setScale(double scale) {
    if (!isScale(scale)) return;
    _scale = _setScale = scale;
    _setDistance = _lastDistance;
}

double PinchGestureRecognizer::velocity() const {
    return _tracker.velocity(now()) / _startDistance;
}

void PinchGestureRecognizer::drive(GestureState state, double scale,
                                   std::optional<gfx::Point> focus) {
    if (!isEnabled() || !isScale(scale)) return;
    if (!focus && view()) focus = view()->convertPointTo(view()->bounds().center(), nullptr);
    if (focus) setLocation(*focus);
    _scale = scale;
    GestureRecognizer::drive(state);
}

void PinchGestureRecognizer::fingersFound() {
    _startDistance = _lastDistance = distance();
    _tracker.clear();
    _tracker.add(now(), _lastDistance);
}

void PinchGestureRecognizer::fingersMoved() {
    _lastDistance = distance();
    _tracker.add(now(), _lastDistance);
    if (isUnderWay()) {
        _scale = _setScale * _lastDistance / _setDistance;
        enter(GestureState::Changed);
    } else if (std::abs(_lastDistance - _startDistance) >= slop) {
        recognize(GestureState::Began);
    }
}

void PinchGestureRecognizer::willRecognize() {
    setScale(1);
    _startDistance = _lastDistance;
}

void PinchGestureRecognizer::reset() {
    TwoFingerGestureRecognizer::reset();
    _scale = 1;
    _tracker.clear();
}

double PinchGestureRecognizer::distance() const {
    const gfx::Point arm = line();
    return std::max(1.0, std::hypot(arm.x, arm.y));
}

}  // namespace kalim::ui
