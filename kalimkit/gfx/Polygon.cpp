#include "kalimkit/gfx/Polygon.h"

#include <tuple>

namespace kalim::gfx {

Polygon cornersOf(const Rect& rect, const AffineTransform& transform) {
    return {transform.apply(rect.origin), transform.apply(Point{rect.maxX(), rect.minY()}),
            transform.apply(Point{rect.maxX(), rect.maxY()}),
            transform.apply(Point{rect.minX(), rect.maxY()})};
}

bool isUpright(const Polygon& polygon) {
    if (polygon.size() != 4) return false;
    const auto& [a, b, c, d] = std::tie(polygon[0], polygon[1], polygon[2], polygon[3]);
    return (a.y == b.y && b.x == c.x && c.y == d.y && d.x == a.x) ||
           (a.x == b.x && b.y == c.y && c.x == d.x && d.y == a.y);
}

Rect boundsOf(const Polygon& polygon) {
    return pathOf(polygon).pointBounds();
}

Path pathOf(const Polygon& polygon) {
    Path path;
    for (std::size_t i = 0; i < polygon.size(); ++i)
        i == 0 ? path.moveTo(polygon[i]) : path.lineTo(polygon[i]);
    path.close();
    return path;
}

double windingOf(const Polygon& polygon) {
    double sum = 0;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Point& next = polygon[(i + 1) % polygon.size()];
        sum += polygon[i].x * next.y - next.x * polygon[i].y;
    }
    return sum;
}

}  // namespace kalim::gfx
