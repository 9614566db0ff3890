#include "kalimkit/imageedit/crop/CropDrag.h"

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

// One direction of a frame, from `low` on.
struct Extent {
    double low = 0;
    double length = 0;
};

// Keeps an extent inside the content and no shorter than a frame may be. `fixedEnd` is where it
// ends when its beginning is dragged.
Extent limitedExtent(Extent extent, Extent content, const double* fixedEnd) {
    const double contentEnd = content.low + content.length;
    double low = std::min(std::max(extent.low, content.low), contentEnd - leastCropSide);
    if (fixedEnd && *fixedEnd - low <= leastCropSide) low = *fixedEnd - leastCropSide;
    const double length = std::max(std::min(extent.length, content.length), leastCropSide);
    return {low, std::min(length, (fixedEnd ? *fixedEnd : contentEnd) - low)};
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
    const auto isNearCorner = [&](double x, double y) {
        return isNear({x, y, 0, 0}, cornerTolerance, cornerTolerance);
    };
    if (isNearCorner(x1, y1)) return CropEdge::TopLeft;
    if (isNearCorner(x2, y1)) return CropEdge::TopRight;
    if (isNearCorner(x2, y2)) return CropEdge::BottomRight;
    if (isNearCorner(x1, y2)) return CropEdge::BottomLeft;
    const gfx::Size size = frame.size;
    if (isNear({x2, y1, 0, size.height}, edgeTolerance, edgeTolerance)) return CropEdge::Right;
    if (isNear({x1, y2, size.width, 0}, edgeTolerance, edgeTolerance)) return CropEdge::Bottom;
    if (isNear({x1, y1, 0, size.height}, edgeTolerance, edgeTolerance)) return CropEdge::Left;
    // Much easier to grab than the others, deliberately.
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
    if (!isAspectRatioLocked) return limited(proposed(by, frame));
    return squared(limited(proposedLocked(by, frame)));
}

gfx::Rect CropDrag::proposed(gfx::Point by, const gfx::Rect& frame) const {
    gfx::Rect next = frame;
    if (movesLeft()) {
        next.origin.x = touchFrame.minX() + by.x;
        next.size.width = touchFrame.maxX() - next.origin.x;
    }
    if (movesRight()) next.size.width = touchFrame.size.width + by.x;
    if (movesTop()) {
        next.origin.y = touchFrame.minY() + by.y;
        next.size.height = touchFrame.maxY() - next.origin.y;
    }
    if (movesBottom()) next.size.height = touchFrame.size.height + by.y;
    return next;
}

gfx::Rect CropDrag::proposedLocked(gfx::Point by, const gfx::Rect& frame) const {
    gfx::Rect next = proposed(by, frame);
    const bool isHorizontal = movesLeft() || movesRight();
    const bool isVertical = movesTop() || movesBottom();
    if (isHorizontal && isVertical) {
        const double horizontal = (movesLeft() ? -by.x : by.x) / touchFrame.size.width;
        const double vertical = (movesTop() ? -by.y : by.y) / touchFrame.size.height;
        const double factor = ((1 + horizontal) + (1 + vertical)) / 2;
        next.size = {ceiled(factor * touchFrame.size.width),
                     ceiled(factor * touchFrame.size.height)};
        next.origin.x = movesLeft() ? touchFrame.maxX() - next.size.width : touchFrame.minX();
        next.origin.y = movesTop() ? touchFrame.maxY() - next.size.height : touchFrame.minY();
    } else if (isHorizontal) {
        // The width that the frame has so far: a square follows the finger a step behind.
        next.size.height = frame.size.width;
        next.origin.y = std::min(touchFrame.midY() - next.size.height / 2,
                                 contentFrame.maxY() - next.size.height);
    } else {
        next.size.width = frame.size.height;
        next.origin.x = std::min(touchFrame.midX() - next.size.width / 2,
                                 contentFrame.maxX() - next.size.width);
    }
    return next;
}

gfx::Rect CropDrag::limited(const gfx::Rect& proposed) const {
    const double right = touchFrame.maxX();
    const double bottom = touchFrame.maxY();
    const Extent x = limitedExtent({proposed.minX(), proposed.size.width},
                                   {contentFrame.minX(), contentFrame.size.width},
                                   movesLeft() ? &right : nullptr);
    const Extent y = limitedExtent({proposed.minY(), proposed.size.height},
                                   {contentFrame.minY(), contentFrame.size.height},
                                   movesTop() ? &bottom : nullptr);
    return {x.low, y.low, x.length, y.length};
}

gfx::Rect CropDrag::squared(gfx::Rect frame) const {
    const double side = std::min(frame.size.width, frame.size.height);
    frame.size = {side, side};
    if (movesTop()) frame.origin.y = std::max(frame.origin.y, touchFrame.maxY() - side);
    if (movesLeft()) frame.origin.x = std::max(frame.origin.x, touchFrame.maxX() - side);
    return frame;
}

}  // namespace kalim
