#include "kalimkit/ui/gesture/TapGestureRecognizer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

namespace {

double distance(gfx::Point a, gfx::Point b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

void TapGestureRecognizer::setNumberOfTapsRequired(int count) {
    _tapsRequired = std::max(1, count);
}

void TapGestureRecognizer::setNumberOfTouchesRequired(int count) {
    _touchesRequired = std::max(1, count);
}

void TapGestureRecognizer::touchesBegan(const TouchEvent& event,
                                        const std::vector<TouchRef>& active) {
    if (_isLifting || static_cast<int>(active.size()) > _touchesRequired) return fail();
    if (_fingers.empty()) failAfter(longest);
    for (const TouchRef& touch : event.touches)
        _fingers.push_back({touch, touch->locationIn(nullptr)});
    if (static_cast<int>(_fingers.size()) < _touchesRequired) return;
    const gfx::Point middle = middleOf(active);
    setLocation(middle);
    if (_taps > 0 && distance(middle, _place) > reach) {
        // This one begins other taps.
        _taps = 0;
        concede();
    }
    if (_taps == 0) _place = middle;
}

void TapGestureRecognizer::touchesMoved(const TouchEvent& /*event*/,
                                        const std::vector<TouchRef>& /*active*/) {
    if (isStraying()) fail();
}

void TapGestureRecognizer::touchesEnded(const TouchEvent& /*event*/,
                                        const std::vector<TouchRef>& active) {
    _isLifting = true;
    // It may have lifted elsewhere than it last was.
    if (isStraying()) return fail();
    if (active.empty()) completeTap();
}

void TapGestureRecognizer::touchesCancelled(const TouchEvent& /*event*/,
                                            const std::vector<TouchRef>& /*active*/) {
    fail();
}

void TapGestureRecognizer::reset() {
    stopClock();
    _taps = 0;
    _fingers.clear();
    _isLifting = false;
}

bool TapGestureRecognizer::isStraying() const {
    return std::ranges::any_of(_fingers, [](const Finger& finger) {
        return distance(finger.touch->locationIn(nullptr), finger.start) >= slop;
    });
}

void TapGestureRecognizer::completeTap() {
    const bool isComplete = static_cast<int>(_fingers.size()) == _touchesRequired;
    _fingers.clear();
    _isLifting = false;
    if (!isComplete) return fail();
    if (++_taps < _tapsRequired) return failAfter(pause);
    stopClock();
    recognize(GestureState::Ended);
}

void TapGestureRecognizer::failAfter(double seconds) {
    stopClock();
    _alarm = Environment::current().runLoop().after(seconds, [this, watch = weak_from_this()] {
        const auto alive = watch.lock();
        if (!alive) return;
        _alarm = 0;
        fail();
    });
}

void TapGestureRecognizer::stopClock() {
    Environment::current().runLoop().cancel(std::exchange(_alarm, 0));
}

}  // namespace kalim::ui
