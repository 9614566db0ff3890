#include "kalimkit/ui/control/ScrollMotion.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kalim::ui {

namespace {

constexpr double bandStiffness = 0.55;
// Logarithm of the share of the speed that is left after a second: 0.998 for each millisecond.
const double decay = 1000 * std::log(0.998);
// Points per second at which it counts as standing.
constexpr double leastSpeed = 4;
// Natural frequency of the spring, radians per second, and points that it may be away at its end.
constexpr double springRate = 10;
constexpr double springTolerance = 0.1;

}  // namespace

double rubberBand(double distance, double viewLength) {
    if (!(viewLength > 0)) return 0;
    const double pulled = std::abs(distance) * bandStiffness / viewLength;
    return std::copysign((1 - 1 / (pulled + 1)) * viewLength, distance);
}

double rubberBandPull(double shown, double viewLength) {
    const double left = viewLength - std::abs(shown);
    return left > 0 ? shown / left * viewLength / bandStiffness : 0;
}

double ScrollRange::clamped(double offset) const {
    return std::clamp(offset, least, std::max(least, most));
}

double ScrollRange::banded(double offset, double viewLength) const {
    const double edge = clamped(offset);
    return edge + rubberBand(offset - edge, viewLength);
}

double ScrollRange::unbanded(double offset, double viewLength) const {
    const double edge = clamped(offset);
    return edge + rubberBandPull(offset - edge, viewLength);
}

ScrollMotion::ScrollMotion(double offset, double velocity, const ScrollRange& range, bool bounces)
    : _start(offset), _velocity(velocity), _end(range.clamped(offset)) {
    if (_end != offset) {
        // Content beyond the range does not slide: it springs, or jumps.
        if (bounces) startSpring(offset - _end, velocity, _end);
        return;
    }
    if (std::abs(velocity) <= leastSpeed) return;
    _slideTime = std::log(leastSpeed / std::abs(velocity)) / decay;
    _end = slidAt(_slideTime);
    const double edge = range.clamped(_end);
    if (edge == _end) return;
    // This solves slidAt() for the time.
    const double left = 1 + (edge - _start) * decay / velocity;
    _slideTime = std::log(left) / decay;
    _end = edge;
    if (bounces) startSpring(0, velocity * left, edge);
}

double ScrollMotion::slidAt(double time) const {
    return _start + _velocity * (std::exp(decay * time) - 1) / decay;
}

void ScrollMotion::startSpring(double displacement, double velocity, double edge) {
    _end = edge;
    _displacement = displacement;
    _slope = velocity + springRate * displacement;
    // Each of the two terms falls below half the tolerance.
    const double first = std::log(2 * std::abs(_displacement) / springTolerance) / springRate;
    const double second =
        2 / springRate *
        std::log(4 * std::abs(_slope) / (std::numbers::e * springRate * springTolerance));
    _springTime = std::max({first, second, 0.0});
}

double ScrollMotion::offsetAt(double time) const {
    if (time >= duration()) return _end;
    if (time < _slideTime) return slidAt(time);
    const double sprung = time - _slideTime;
    return _end + (_displacement + _slope * sprung) * std::exp(-springRate * sprung);
}

}  // namespace kalim::ui
