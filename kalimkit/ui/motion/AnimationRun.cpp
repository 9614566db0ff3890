#include "kalimkit/ui/motion/AnimationRun.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/ui/motion/Animated.h"
#include "kalimkit/ui/motion/SpringCurve.h"

namespace kalim::ui {

namespace {

// Moments closer than this are the same one.
constexpr Time tolerance = 1e-9;

double seconds(double value) {
    return std::isfinite(value) ? std::max(value, 0.0) : 0;
}

}  // namespace

AnimationRun::AnimationRun(const AnimationOptions& options, Time start,
                           std::function<void(bool finished)> completion)
    : _options(options), _start(start), _completion(std::move(completion)) {
    _options.duration = seconds(options.duration);
    _options.delay = seconds(options.delay);
}

bool AnimationRun::isOver(Time time) const {
    return time >= end() - tolerance;
}

double AnimationRun::share(Time time) const {
    if (isOver(time)) return 1;
    const double elapsed = time - _start - _options.delay;
    if (elapsed <= 0) return 0;
    const double passed = elapsed / _options.duration;
    return _options.spring ? springShare(*_options.spring, passed, _options.duration)
                           : ease(_options.curve, passed);
}

void AnimationRun::take(const std::shared_ptr<Animated>& animated) {
    ++_taken;
    _animated.push_back(animated);
}

void AnimationRun::finish(Time now) {
    for (const auto& entry : std::exchange(_animated, {})) {
        if (const auto animated = entry.lock()) animated->advanceMotion(now);
    }
    const bool isFinished = _taken == 0 || _lost < _taken;
    if (const auto completion = std::exchange(_completion, nullptr)) completion(isFinished);
}

}  // namespace kalim::ui
