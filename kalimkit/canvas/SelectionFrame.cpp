#include "kalimkit/canvas/SelectionFrame.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "kalimkit/canvas/DrawnSpan.h"
#include "kalimkit/tool/HandleReach.h"

namespace kalim {

namespace {

// Points of the screen: from the box to the handle that turns, how far handles reach to each side,
// and the shortest side that has one in its middle.
constexpr double turnDistance = 26;
constexpr double turnReach = 12;
constexpr double fingerReach = 21;
constexpr double pointerReach = 12;
constexpr double sideReachAlong = 12;
constexpr double sideReachOutside = 10;
constexpr double sideReachInside = 8;
constexpr double shortestSide = 56;

using enum MoveDirection;
constexpr MoveDirection corners[] = {TopLeft, TopRight, BottomRight, BottomLeft};
constexpr MoveDirection sides[] = {Top, Right, Bottom, Left};

}  // namespace

gfx::Point SelectionFrame::ownPlaceOf(MoveDirection handle) const {
    const double distance = turnDistance * screenPoint;
    if (handle == Turn) {
        return {box.midX(), turnsBelow ? box.maxY() + distance : box.minY() - distance};
    }
    const MovedSides moved = movedSides(handle);
    return {box.midX() + moved.x * box.size.width / 2, box.midY() + moved.y * box.size.height / 2};
}

gfx::Point SelectionFrame::placeOf(MoveDirection handle) const {
    return turn.apply(ownPlaceOf(handle));
}

std::vector<MoveDirection> SelectionFrame::handles() const {
    std::vector<MoveDirection> handles;
    if (hasTurn) handles.push_back(Turn);
    if (hasCorners) handles.insert(handles.end(), std::begin(corners), std::end(corners));
    for (const MoveDirection side : sides) {
        const double length = movedSides(side).x == 0 ? box.size.width : box.size.height;
        if (hasSides && length >= shortestSide * screenPoint) handles.push_back(side);
    }
    return handles;
}

MoveDirection SelectionFrame::handleAt(gfx::Point p) const {
    const gfx::Point own = turn.inverted().apply(p);
    for (const MoveDirection handle : handles()) {
        if (reaches(handle, own)) return handle;
    }
    return None;
}

bool SelectionFrame::reaches(MoveDirection handle, gfx::Point own) const {
    const gfx::Point offset = own - ownPlaceOf(handle);
    if (handle == Turn) return std::hypot(offset.x, offset.y) <= turnReach * screenPoint;
    const MovedSides moved = movedSides(handle);
    if (moved.x != 0 && moved.y != 0) {
        const double reach = (isForFingers ? fingerReach : pointerReach) * screenPoint;
        return std::max(std::abs(offset.x), std::abs(offset.y)) <= reach &&
               isWithinThirdsOfCorner(own, handle, box);
    }
    const bool isUpright = moved.x != 0;
    const double length = isUpright ? box.size.height : box.size.width;
    const double depth = isUpright ? box.size.width : box.size.height;
    const double along = std::abs(isUpright ? offset.y : offset.x);
    const double outwards = isUpright ? offset.x * moved.x : offset.y * moved.y;
    return along <= std::min(sideReachAlong * screenPoint, length / 6) &&
           outwards <= sideReachOutside * screenPoint &&
           -outwards <= std::min(sideReachInside * screenPoint, depth / 3);
}

}  // namespace kalim
