#include "kalimkit/shapes/outline/PointerOutline.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kalim {

namespace {

constexpr double quarter = std::numbers::pi / 2;
// Of half the base: the tip's radius, and how far a side's control point lies from the axis.
constexpr double tipShare = 0.09;
constexpr double hollowShare = 0.42;
// Of the way to the tip.
constexpr double hollowPlace = 0.42;

}  // namespace

gfx::Path pointerOutline(gfx::Point from, gfx::Point tip, double halfBase) {
    const gfx::Point way = tip - from;
    const double length = std::hypot(way.x, way.y);
    if (!(length > 0)) return {};
    const gfx::Point axis = way * (1 / length);
    const gfx::Point across{-axis.y, axis.x};
    const double radius = std::min(tipShare * halfBase, length / 4);
    const auto at = [&](double along, double aside) {
        return from + axis * along + across * aside;
    };
    const double end = length - radius;
    const double angle = std::atan2(axis.y, axis.x);
    gfx::Path path;
    path.moveTo(at(0, -halfBase));
    path.quadTo(at(hollowPlace * length, -hollowShare * halfBase), at(end, -radius));
    path.addArc(at(end, 0), radius, angle - quarter, angle + quarter, false);
    path.quadTo(at(hollowPlace * length, hollowShare * halfBase), at(0, halfBase));
    path.close();
    return path;
}

gfx::Path roundBox(const gfx::Rect& box, double radius) {
    const double r = std::min({radius, box.size.width / 2, box.size.height / 2});
    gfx::Path path;
    path.addArc({box.maxX() - r, box.minY() + r}, r, -quarter, 0, false);
    path.addArc({box.maxX() - r, box.maxY() - r}, r, 0, quarter, false);
    path.addArc({box.minX() + r, box.maxY() - r}, r, quarter, 2 * quarter, false);
    path.addArc({box.minX() + r, box.minY() + r}, r, 2 * quarter, 3 * quarter, false);
    path.close();
    return path;
}

}  // namespace kalim
