#include "kalimkit/ui/gesture/LongPressGestureRecognizer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

void LongPressGestureRecognizer::setMinimumPressDuration(double seconds) {
    if (std::isfinite(seconds)) _duration = std::max(0.0, seconds);
}

void LongPressGestureRecognizer::touchesBegan(const TouchEvent& /*event*/,
                                              const std::vector<TouchRef>& active) {
    if (isUnderWay()) return;
    if (active.size() != 1) return fail();
    _finger = active.front();
    _start = _finger->locationIn(nullptr);
    setLocation(_start);
    _alarm = Environment::current().runLoop().after(_duration, [this, watch = weak_from_this()] {
        const auto alive = watch.lock();
        if (!alive) return;
        _alarm = 0;
        recognize(GestureState::Began);
    });
}

void LongPressGestureRecognizer::touchesMoved(const TouchEvent& event,
                                              const std::vector<TouchRef>& /*active*/) {
    if (std::ranges::find(event.touches, _finger) == event.touches.end()) return;
    const gfx::Point location = _finger->locationIn(nullptr);
    setLocation(location);
    const gfx::Point way = location - _start;
    if (isUnderWay()) {
        enter(GestureState::Changed);
    } else if (std::hypot(way.x, way.y) > _allowableMovement) {
        fail();
    }
}

void LongPressGestureRecognizer::touchesEnded(const TouchEvent& /*event*/,
                                              const std::vector<TouchRef>& active) {
    lose(GestureState::Ended, active);
}

void LongPressGestureRecognizer::touchesCancelled(const TouchEvent& /*event*/,
                                                  const std::vector<TouchRef>& active) {
    lose(GestureState::Cancelled, active);
}

void LongPressGestureRecognizer::reset() {
    stopClock();
    _finger = nullptr;
}

void LongPressGestureRecognizer::lose(GestureState outcome, const std::vector<TouchRef>& active) {
    if (std::ranges::find(active, _finger) != active.end()) return;
    stopClock();
    if (isUnderWay()) enter(outcome);
}

void LongPressGestureRecognizer::stopClock() {
    Environment::current().runLoop().cancel(std::exchange(_alarm, 0));
}

}  // namespace kalim::ui
