#include "kalimkit/shapes/outline/StraightStroke.h"

#include <cmath>

namespace kalim {

namespace {

// The tangent of some seven degrees.
constexpr double slope = 0.125;

}  // namespace

gfx::Point straightEnd(gfx::Point start, gfx::Point end) {
    const double across = std::abs(end.x - start.x);
    const double down = std::abs(end.y - start.y);
    if (down <= across * slope) return {end.x, start.y};
    if (across <= down * slope) return {start.x, end.y};
    return end;
}

}  // namespace kalim
