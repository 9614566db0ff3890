#include "tests/support/Finger.h"

#include <cmath>
#include <vector>

namespace kalim::test {

namespace {

std::vector<ui::Finger> reports(const TwoFingers& hand) {
    const gfx::Point arm = {hand.radius * std::cos(hand.angle), hand.radius * std::sin(hand.angle)};
    return {{1, hand.center - arm}, {2, hand.center + arm}};
}

}  // namespace

Finger& Finger::down(gfx::Point p) {
    _at = p;
    _window.fingersBegan({report()});
    return *this;
}

Finger& Finger::moveTo(gfx::Point p, int steps) {
    const gfx::Point from = _at;
    for (int step = 1; step <= steps; ++step) {
        _at = step == steps ? p : from + (p - from) * (static_cast<double>(step) / steps);
        _window.fingersMoved({report()});
    }
    return *this;
}

Finger& Finger::up() {
    _window.fingersEnded({report()});
    return *this;
}

Finger& Finger::cancel() {
    _window.fingersCancelled({report()});
    return *this;
}

void pinchRotate(ui::Window& window, const TwoFingers& from, const TwoFingers& to, int steps) {
    window.fingersBegan(reports(from));
    for (int step = 1; step <= steps; ++step) {
        const double share = static_cast<double>(step) / steps;
        window.fingersMoved(reports({from.center + (to.center - from.center) * share,
                                     from.radius + (to.radius - from.radius) * share,
                                     from.angle + (to.angle - from.angle) * share}));
    }
}

}  // namespace kalim::test
