#include "kalimkit/canvas/DrawnSpan.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kalim {

namespace {

// Of the square over two sides, on the side of each.
gfx::Point squared(gfx::Point sides) {
    const double side = std::max(std::abs(sides.x), std::abs(sides.y));
    return {std::copysign(side, sides.x), std::copysign(side, sides.y)};
}

// How long a side is once its handle, if it is on this one, has been dragged.
double dragged(double length, int side, double offset, bool isFromMiddle) {
    return length + side * offset * (isFromMiddle ? 2 : 1);
}

}  // namespace

double steppedAngle(double angle) {
    constexpr double step = std::numbers::pi / 12;
    return std::round(angle / step) * step;
}

gfx::Point steppedPoint(gfx::Point fixed, gfx::Point p) {
    const gfx::Point offset = p - fixed;
    const double length = std::hypot(offset.x, offset.y);
    const double angle = steppedAngle(std::atan2(offset.y, offset.x));
    return fixed + gfx::Point{length * std::cos(angle), length * std::sin(angle)};
}

gfx::Point alongAxis(gfx::Point offset) {
    return std::abs(offset.x) >= std::abs(offset.y) ? gfx::Point{offset.x, 0}
                                                    : gfx::Point{0, offset.y};
}

DrawnSpan drawnSpan(ToolSpan kind, gfx::Point from, gfx::Point to, const ui::Modifiers& keys) {
    if (kind == ToolSpan::Free) return {from, to};
    DrawnSpan span{from, to};
    if (keys.shift && kind == ToolSpan::Line) span.end = steppedPoint(from, to);
    if (keys.shift && kind == ToolSpan::Box) span.end = from + squared(to - from);
    if (keys.alt) span.start = from + from - span.end;
    return span;
}

MovedSides movedSides(MoveDirection handle) {
    using enum MoveDirection;
    MovedSides sides;
    if (handle == TopLeft || handle == Left || handle == BottomLeft) sides.x = -1;
    if (handle == TopRight || handle == Right || handle == BottomRight) sides.x = 1;
    if (handle == TopLeft || handle == Top || handle == TopRight) sides.y = -1;
    if (handle == BottomLeft || handle == Bottom || handle == BottomRight) sides.y = 1;
    return sides;
}

gfx::Point fixedPoint(const gfx::Rect& box, MoveDirection handle, const ui::Modifiers& keys) {
    const MovedSides sides = movedSides(handle);
    if (keys.alt) return box.center();
    return {box.midX() - sides.x * box.size.width / 2, box.midY() - sides.y * box.size.height / 2};
}

gfx::Rect resizedBox(const gfx::Rect& box, MoveDirection handle, gfx::Point offset,
                     const ui::Modifiers& keys) {
    const MovedSides sides = movedSides(handle);
    double width = dragged(box.size.width, sides.x, offset.x, keys.alt);
    double height = dragged(box.size.height, sides.y, offset.y, keys.alt);
    if (keys.shift && !box.isEmpty()) {
        // By the side that has grown more, or the one that is moved at all.
        const double byWidth = sides.x != 0 ? std::abs(width) / box.size.width : 0;
        const double byHeight = sides.y != 0 ? std::abs(height) / box.size.height : 0;
        const double factor = std::max(byWidth, byHeight);
        width = std::copysign(box.size.width * factor, width);
        height = std::copysign(box.size.height * factor, height);
    }
    // Sides that no handle moves grow about their middle, and so do all where that is asked for.
    const gfx::Point fixed = fixedPoint(box, handle, keys);
    const bool isMiddleX = sides.x == 0 || keys.alt;
    const bool isMiddleY = sides.y == 0 || keys.alt;
    const gfx::Point low{isMiddleX ? fixed.x - width / 2 : fixed.x,
                         isMiddleY ? fixed.y - height / 2 : fixed.y};
    const gfx::Point high{isMiddleX ? fixed.x + width / 2 : fixed.x + sides.x * width,
                          isMiddleY ? fixed.y + height / 2 : fixed.y + sides.y * height};
    return gfx::Rect::spanning(low, high);
}

}  // namespace kalim
