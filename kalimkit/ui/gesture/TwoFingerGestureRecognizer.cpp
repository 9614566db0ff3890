#include "kalimkit/ui/gesture/TwoFingerGestureRecognizer.h"

#include <algorithm>

namespace kalim::ui {

namespace {

bool holds(const std::vector<TouchRef>& touches, const TouchRef& touch) {
    return std::ranges::find(touches, touch) != touches.end();
}

}  // namespace

gfx::Point TwoFingerGestureRecognizer::line() const {
    return _second->locationIn(nullptr) - _first->locationIn(nullptr);
}

void TwoFingerGestureRecognizer::touchesBegan(const TouchEvent& /*event*/,
                                              const std::vector<TouchRef>& active) {
    if (!_first && state() == GestureState::Possible) track(active);
}

void TwoFingerGestureRecognizer::touchesMoved(const TouchEvent& event,
                                              const std::vector<TouchRef>& /*active*/) {
    if (!_first || !(holds(event.touches, _first) || holds(event.touches, _second))) return;
    locate();
    fingersMoved();
}

void TwoFingerGestureRecognizer::touchesEnded(const TouchEvent& /*event*/,
                                              const std::vector<TouchRef>& active) {
    lose(GestureState::Ended, active);
}

void TwoFingerGestureRecognizer::touchesCancelled(const TouchEvent& /*event*/,
                                                  const std::vector<TouchRef>& active) {
    lose(GestureState::Cancelled, active);
}

void TwoFingerGestureRecognizer::reset() {
    _first = _second = nullptr;
}

// Takes the two fingers that have been down longest.
void TwoFingerGestureRecognizer::track(const std::vector<TouchRef>& active) {
    if (active.size() < 2) return;
    _first = active[0];
    _second = active[1];
    locate();
    fingersFound();
}

// A gesture that has not begun goes on with the fingers that are left.
void TwoFingerGestureRecognizer::lose(GestureState outcome, const std::vector<TouchRef>& active) {
    if (!_first || (holds(active, _first) && holds(active, _second))) return;
    _first = _second = nullptr;
    if (isUnderWay()) {
        enter(outcome);
    } else {
        track(active);
    }
}

void TwoFingerGestureRecognizer::locate() {
    setLocation(middleOf({_first, _second}));
}

}  // namespace kalim::ui
