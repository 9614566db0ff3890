#include "kalimkit/tool/HandleReach.h"

#include <cmath>

namespace kalim {

bool isWithinThirdsOfCorner(gfx::Point p, MoveDirection corner, const gfx::Rect& box) {
    using enum MoveDirection;
    const gfx::Size third{box.size.width / 3, box.size.height / 3};
    if ((corner == TopLeft || corner == BottomLeft) && p.x > box.minX() + third.width) return false;
    if ((corner == TopRight || corner == BottomRight) && p.x < box.maxX() - third.width)
        return false;
    if ((corner == TopLeft || corner == TopRight) && p.y > box.minY() + third.height) return false;
    return !(corner == BottomLeft || corner == BottomRight) || p.y >= box.maxY() - third.height;
}

bool isWithinThirdOfSegment(gfx::Point p, gfx::Point handle, gfx::Point other) {
    const gfx::Point along = other - handle;
    const gfx::Point reached = p - handle;
    const double square = along.x * along.x + along.y * along.y;
    return (reached.x * along.x + reached.y * along.y) * 3 <= square;
}

bool isWithinThirdsOfVertex(gfx::Point p, gfx::Point vertex, const gfx::Rect& box) {
    return !box.contains(p) || (std::abs(p.x - vertex.x) * 3 <= box.size.width &&
                                std::abs(p.y - vertex.y) * 3 <= box.size.height);
}

}  // namespace kalim
