#include "kalimkit/shapes/outline/LineDistance.h"

#include <cmath>
#include <limits>

namespace kalim {

double distanceFromLine(gfx::Point p, gfx::Point a, gfx::Point b) {
    if (a == b) return std::numeric_limits<double>::quiet_NaN();
    // Single precision is meant.
    const float normalX = static_cast<float>(a.y - b.y);
    const float normalY = static_cast<float>(b.x - a.x);
    const float offset = static_cast<float>(a.x * b.y - a.y * b.x);
    const float value =
        normalX * static_cast<float>(p.x) + normalY * static_cast<float>(p.y) + offset;
    return std::abs(value) / std::sqrt(normalX * normalX + normalY * normalY);
}

}  // namespace kalim
