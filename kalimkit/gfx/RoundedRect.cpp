#include "kalimkit/gfx/RoundedRect.h"

#include <algorithm>
#include <numbers>

namespace kalim::gfx {

Path roundedRect(const Rect& rect, double radius) {
    Path path;
    const double r = std::min({radius, rect.size.width / 2, rect.size.height / 2});
    if (!(r > 0)) {
        path.addRect(rect);
        return path;
    }
    constexpr double quarter = std::numbers::pi / 2;
    path.addArc({rect.minX() + r, rect.minY() + r}, r, 2 * quarter, 3 * quarter, false);
    path.addArc({rect.maxX() - r, rect.minY() + r}, r, 3 * quarter, 4 * quarter, false);
    path.addArc({rect.maxX() - r, rect.maxY() - r}, r, 0, quarter, false);
    path.addArc({rect.minX() + r, rect.maxY() - r}, r, quarter, 2 * quarter, false);
    path.close();
    return path;
}

}  // namespace kalim::gfx
