#include "kalimkit/gfx/Rect.h"

#include <algorithm>
#include <cmath>

namespace kalim::gfx {

namespace {

struct Edges {
    double left;
    double top;
    double right;
    double bottom;
};

Edges commonEdges(const Rect& a, const Rect& b) {
    return {std::max(a.origin.x, b.origin.x), std::max(a.origin.y, b.origin.y),
            std::min(a.origin.x + a.size.width, b.origin.x + b.size.width),
            std::min(a.origin.y + a.size.height, b.origin.y + b.size.height)};
}

}  // namespace

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
    const Edges common = commonEdges(*this, other);
    return common.right > common.left && common.bottom > common.top;
}

Rect Rect::intersection(const Rect& other) const {
    const auto [left, top, right, bottom] = commonEdges(*this, other);
    if (!(right > left && bottom > top)) return {left, top, 0, 0};
    return {left, top, right - left, bottom - top};
}

Rect Rect::unionWith(const Rect& other) const {
    const double left = std::min(origin.x, other.origin.x);
    const double top = std::min(origin.y, other.origin.y);
    const double right = std::max(origin.x + size.width, other.origin.x + other.size.width);
    const double bottom = std::max(origin.y + size.height, other.origin.y + other.size.height);
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
