#include "kalimkit/gfx/Rect.h"

#include <algorithm>
#include <cmath>

namespace kalim::gfx {

Rect Rect::spanning(Point a, Point b) {
    return {std::min(a.x, b.x), std::min(a.y, b.y), std::abs(b.x - a.x), std::abs(b.y - a.y)};
}

bool Rect::contains(Point p) const {
    return p.x >= minX() && p.x < maxX() && p.y >= minY() && p.y < maxY();
}

bool Rect::contains(const Rect& other) const {
    return other.minX() >= minX() && other.maxX() <= maxX() && other.minY() >= minY() &&
           other.maxY() <= maxY();
}

bool Rect::intersects(const Rect& other) const {
    return !intersection(other).isEmpty();
}

Rect Rect::intersection(const Rect& other) const {
    const double left = std::max(minX(), other.minX());
    const double top = std::max(minY(), other.minY());
    const double right = std::min(maxX(), other.maxX());
    const double bottom = std::min(maxY(), other.maxY());
    if (!(right > left && bottom > top)) return {left, top, 0, 0};
    return {left, top, right - left, bottom - top};
}

Rect Rect::unionWith(const Rect& other) const {
    const double left = std::min(minX(), other.minX());
    const double top = std::min(minY(), other.minY());
    const double right = std::max(maxX(), other.maxX());
    const double bottom = std::max(maxY(), other.maxY());
    return {left, top, right - left, bottom - top};
}

Rect Rect::inset(double dx, double dy) const {
    const double width = size.width - 2 * dx;
    const double height = size.height - 2 * dy;
    return {width >= 0 ? minX() + dx : midX(), height >= 0 ? minY() + dy : midY(),
            std::max(width, 0.0), std::max(height, 0.0)};
}

Rect Rect::roundedOut(double scale) const {
    const double left = std::floor(minX() * scale) / scale;
    const double top = std::floor(minY() * scale) / scale;
    const double right = std::ceil(maxX() * scale) / scale;
    const double bottom = std::ceil(maxY() * scale) / scale;
    return {left, top, right - left, bottom - top};
}

}  // namespace kalim::gfx
