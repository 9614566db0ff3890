#include "kalimkit/crop/CropDrag.h"

#include <algorithm>
#include <cmath>

namespace kalim {

namespace {

constexpr double cornerTolerance = 70;
constexpr double edgeTolerance = 20;
constexpr double topTolerance = 70;

// In single precision, deliberately: fractions that vanish there do not move an edge.
double ceiled(double length) {
    return static_cast<double>(std::ceil(static_cast<float>(length)));
}

// The length nearest to the wanted one, from one that is allowed on.
template <typename IsAllowed>
double reached(double from, double wanted, IsAllowed isAllowed) {
    if (isAllowed(wanted)) return wanted;
    // Halvings: any way is shorter than a billionth of a point after these.
    for (int step = 0; step < 48; ++step) {
        const double middle = (from + wanted) / 2;
        (isAllowed(middle) ? from : wanted) = middle;
    }
    return from;
}

// Where a length begins that keeps its middle as far as it stays between two ends.
double centred(double middle, double length, double from, double to) {
    return std::max(std::min(middle - length / 2, to - length), from);
}

}  // namespace

// ---- hits

CropEdge cropEdgeForPoint(gfx::Point p, const gfx::Rect& frame) {
    const auto isNear = [&](gfx::Rect place, double dx, double dy) {
        return place.inset(-dx, -dy).contains(p);
    };
    const double x1 = frame.minX();
    const double x2 = frame.maxX();
    const double y1 = frame.minY();
    const double y2 = frame.maxY();
    const gfx::Size size = frame.size;
    const auto isNearCorner = [&](double x, double y) {
        // The middle of a short side is left to the edge.
        return isNear({x, y, 0, 0}, std::min(cornerTolerance, size.width / 3),
                      std::min(cornerTolerance, size.height / 3));
    };
    if (isNearCorner(x1, y1)) return CropEdge::TopLeft;
    if (isNearCorner(x2, y1)) return CropEdge::TopRight;
    if (isNearCorner(x2, y2)) return CropEdge::BottomRight;
    if (isNearCorner(x1, y2)) return CropEdge::BottomLeft;
    if (isNear({x2, y1, 0, size.height}, edgeTolerance, edgeTolerance)) return CropEdge::Right;
    if (isNear({x1, y2, size.width, 0}, edgeTolerance, edgeTolerance)) return CropEdge::Bottom;
    if (isNear({x1, y1, 0, size.height}, edgeTolerance, edgeTolerance)) return CropEdge::Left;
    // The top is much easier to grab than the others, and is meant to be.
    if (isNear({x1, y1, size.width, 0}, edgeTolerance, topTolerance)) return CropEdge::Top;
    return CropEdge::None;
}

bool isOnCropBorder(gfx::Point p, const gfx::Rect& frame) {
    return frame.inset(-edgeTolerance, -edgeTolerance).contains(p) &&
           !frame.inset(edgeTolerance, edgeTolerance).contains(p);
}

// ---- the drag

bool CropDrag::movesLeft() const {
    return edge == CropEdge::Left || edge == CropEdge::TopLeft || edge == CropEdge::BottomLeft;
}

bool CropDrag::movesTop() const {
    return edge == CropEdge::Top || edge == CropEdge::TopLeft || edge == CropEdge::TopRight;
}

bool CropDrag::movesRight() const {
    return edge == CropEdge::Right || edge == CropEdge::TopRight || edge == CropEdge::BottomRight;
}

bool CropDrag::movesBottom() const {
    return edge == CropEdge::Bottom || edge == CropEdge::BottomLeft ||
           edge == CropEdge::BottomRight;
}

gfx::Rect CropDrag::frameAt(gfx::Point p, const gfx::Rect& frame) const {
    if (edge == CropEdge::None) return frame;
    const gfx::Point by{ceiled(p.x - touchPoint.x), ceiled(p.y - touchPoint.y)};
    return placed(isAspectRatioLocked ? allowedSquare(frame.size, proposedSide(by))
                                      : allowed(frame.size, limited(proposed(by))));
}

gfx::Size CropDrag::proposed(gfx::Point by) const {
    gfx::Size size = touchFrame.size;
    if (movesAcross()) size.width += movesLeft() ? -by.x : by.x;
    if (movesDown()) size.height += movesTop() ? -by.y : by.y;
    return size;
}

// Of a square. A corner changes it by the mean of what it changes either way.
double CropDrag::proposedSide(gfx::Point by) const {
    gfx::Size size = proposed(by);
    if (movesAcross() && movesDown()) {
        const double factor =
            (size.width / touchFrame.size.width + size.height / touchFrame.size.height) / 2;
        size = {ceiled(factor * touchFrame.size.width), ceiled(factor * touchFrame.size.height)};
    } else if (movesAcross()) {
        size.height = size.width;
    } else {
        size.width = size.height;
    }
    const gfx::Size square = limited(size);
    return std::min(square.width, square.height);
}

// How large the frame may be inside the content; a square that is dragged at an edge grows both
// ways in the other direction.
gfx::Size CropDrag::room() const {
    gfx::Size size = isAspectRatioLocked ? contentFrame.size : touchFrame.size;
    if (movesLeft()) size.width = touchFrame.maxX() - contentFrame.minX();
    if (movesRight()) size.width = contentFrame.maxX() - touchFrame.minX();
    if (movesTop()) size.height = touchFrame.maxY() - contentFrame.minY();
    if (movesBottom()) size.height = contentFrame.maxY() - touchFrame.minY();
    return size;
}

gfx::Size CropDrag::limited(gfx::Size size) const {
    const auto limit = [](double length, double own, double room) {
        return std::min(std::max(length, std::min(own, leastCropSide)), room);
    };
    const gfx::Size space = room();
    return {limit(size.width, touchFrame.size.width, space.width),
            limit(size.height, touchFrame.size.height, space.height)};
}

bool CropDrag::allows(gfx::Size size) const {
    return picture.size.isEmpty() || limits.allow(cropOutcome(picture, size, contentFrame.size));
}

// Both sides together as far as they go, so that many small steps lead where a large one does; then
// each that is free goes on.
gfx::Size CropDrag::allowed(gfx::Size from, gfx::Size wanted) const {
    const auto between = [&](double share) {
        return gfx::Size{from.width + (wanted.width - from.width) * share,
                         from.height + (wanted.height - from.height) * share};
    };
    if (allows(wanted)) return wanted;
    gfx::Size size = between(reached(0, 1, [&](double share) { return allows(between(share)); }));
    for (double gfx::Size::*side : {&gfx::Size::width, &gfx::Size::height, &gfx::Size::width}) {
        size.*side = reached(size.*side, wanted.*side, [&, tried = size](double length) mutable {
            tried.*side = length;
            return allows(tried);
        });
    }
    return size;
}

// The frame so far, where not even a square of its shorter side is allowed.
gfx::Size CropDrag::allowedSquare(gfx::Size from, double wanted) const {
    const auto isAllowed = [this](double side) { return allows({side, side}); };
    const double least = std::min(from.width, from.height);
    if (!isAllowed(wanted) && !isAllowed(least)) return from;
    const double side = reached(least, wanted, isAllowed);
    return {side, side};
}

gfx::Rect CropDrag::placed(gfx::Size size) const {
    const gfx::Rect& content = contentFrame;
    gfx::Point origin = touchFrame.origin;
    if (movesLeft()) origin.x = touchFrame.maxX() - size.width;
    if (movesTop()) origin.y = touchFrame.maxY() - size.height;
    if (isAspectRatioLocked && !movesAcross())
        origin.x = centred(touchFrame.midX(), size.width, content.minX(), content.maxX());
    if (isAspectRatioLocked && !movesDown())
        origin.y = centred(touchFrame.midY(), size.height, content.minY(), content.maxY());
    return {origin, size};
}

}  // namespace kalim
