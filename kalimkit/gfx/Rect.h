#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Size.h"

namespace kalim::gfx {

// A rectangle with a non-negative size; y grows downwards. A rectangle without area still has a
// place: it takes part in unions with its origin.
struct KALIM_API Rect {
    Point origin;
    Size size;

    Rect() = default;
    Rect(Point rectOrigin, Size rectSize) : origin(rectOrigin), size(rectSize) {}
    Rect(double x, double y, double width, double height) : origin{x, y}, size{width, height} {}
    // The smallest rectangle that holds both points.
    static Rect spanning(Point a, Point b);

    bool operator==(const Rect&) const = default;

    double minX() const { return origin.x; }
    double minY() const { return origin.y; }
    double midX() const { return origin.x + size.width * 0.5; }
    double midY() const { return origin.y + size.height * 0.5; }
    double maxX() const { return origin.x + size.width; }
    double maxY() const { return origin.y + size.height; }
    Point center() const { return {midX(), midY()}; }
    double area() const { return size.width * size.height; }
    bool isEmpty() const { return size.isEmpty(); }

    // The left and top edges belong to the rectangle, the right and bottom edges do not.
    bool contains(Point p) const;
    bool contains(const Rect& other) const;
    bool intersects(const Rect& other) const;
    // Empty, with a zero size, when the two do not meet.
    Rect intersection(const Rect& other) const;
    Rect unionWith(const Rect& other) const;
    // Moves each edge inwards by the amounts, outwards where negative. An inset of more than half
    // the size leaves an empty rectangle at the centre.
    Rect inset(double dx, double dy) const;
    Rect offset(Point by) const { return {origin + by, size}; }
    // Edges moved outwards to whole multiples of 1/scale, so that the result covers whole device
    // pixels at that many pixels per point.
    Rect roundedOut(double scale = 1.0) const;
};

}  // namespace kalim::gfx
