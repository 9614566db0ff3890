#pragma once

namespace kalim::gfx {

// A position or an offset. Which space it lives in (view, canvas, tool, device) is said where it is
// handed over.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
    Point operator+(Point other) const { return {x + other.x, y + other.y}; }
    Point operator-(Point other) const { return {x - other.x, y - other.y}; }
    Point operator-() const { return {-x, -y}; }
    Point operator*(double factor) const { return {x * factor, y * factor}; }
    Point& operator+=(Point other) { return *this = *this + other; }
};

}  // namespace kalim::gfx
