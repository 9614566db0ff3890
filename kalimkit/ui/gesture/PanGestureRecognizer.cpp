#include "kalimkit/ui/gesture/PanGestureRecognizer.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

namespace {

bool isFinite(gfx::Point p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

Time now() {
    return Environment::current().runLoop().now();
}

// Turns an offset of window coordinates into one of a view's.
gfx::Point offsetIn(const View* view, gfx::Point offset) {
    if (!view) return offset;
    return view->convertPointFrom(offset, nullptr) - view->convertPointFrom({}, nullptr);
}

}  // namespace

void PanGestureRecognizer::setMinimumNumberOfTouches(int count) {
    _minimum = std::max(1, count);
}

gfx::Point PanGestureRecognizer::translationIn(const View* view) const {
    return offsetIn(view, _translation);
}

void PanGestureRecognizer::setTranslationIn(gfx::Point translation, const View* view) {
    if (view) {
        translation =
            view->convertPointTo(translation, nullptr) - view->convertPointTo({}, nullptr);
    }
    if (isFinite(translation)) _translation = translation;
}

gfx::Point PanGestureRecognizer::velocityIn(const View* view) const {
    return offsetIn(view, _tracker.velocity(now()));
}

void PanGestureRecognizer::drive(GestureState state, gfx::Point translation) {
    if (!isEnabled() || !isFinite(translation)) return;
    _translation = translation;
    GestureRecognizer::drive(state);
}

void PanGestureRecognizer::touchesBegan(const TouchEvent& /*event*/,
                                        const std::vector<TouchRef>& active) {
    if (!isUnderWay() && static_cast<int>(active.size()) > _maximum) return fail();
    follow(active);
}

void PanGestureRecognizer::touchesMoved(const TouchEvent& /*event*/,
                                        const std::vector<TouchRef>& /*active*/) {
    if (_fingers.empty()) return;
    const gfx::Point middle = middleOf(_fingers);
    const gfx::Point step = middle - _middle;
    if (step == gfx::Point{}) return;
    _middle = middle;
    setLocation(middle);
    _way += step;
    _tracker.add(now(), _way);
    if (static_cast<int>(_fingers.size()) < _minimum) return;
    _translation += step;
    if (isUnderWay()) {
        enter(GestureState::Changed);
    } else if (std::hypot(_translation.x, _translation.y) >= slop) {
        recognize(GestureState::Began);
    }
}

void PanGestureRecognizer::touchesEnded(const TouchEvent& /*event*/,
                                        const std::vector<TouchRef>& active) {
    lose(GestureState::Ended, active);
}

void PanGestureRecognizer::touchesCancelled(const TouchEvent& /*event*/,
                                            const std::vector<TouchRef>& active) {
    lose(GestureState::Cancelled, active);
}

void PanGestureRecognizer::reset() {
    _fingers.clear();
    _translation = _way = {};
    _tracker.clear();
}

// Takes the fingers that have been down longest.
void PanGestureRecognizer::follow(const std::vector<TouchRef>& active) {
    const auto count = std::min<std::ptrdiff_t>(std::ssize(active), std::max(_maximum, _minimum));
    _fingers.assign(active.begin(), active.begin() + count);
    if (_fingers.empty()) return;
    _middle = middleOf(_fingers);
    setLocation(_middle);
    _tracker.add(now(), _way);
}

void PanGestureRecognizer::lose(GestureState outcome, const std::vector<TouchRef>& active) {
    // Before it began, what too few fingers have done does not count.
    const bool isEnough = static_cast<int>(active.size()) >= _minimum;
    if (!isEnough && isUnderWay()) return enter(outcome);
    if (!isEnough) _translation = {};
    follow(active);
}

}  // namespace kalim::ui
