#include "kalimkit/canvas/HandleUnder.h"

#include <algorithm>
#include <vector>

#include "kalimkit/canvas/CanvasCursor.h"
#include "kalimkit/canvas/DrawnSpan.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

// All that a tool may have a handle at.
std::vector<gfx::Point> placesOf(const MDrawTool& tool) {
    std::vector<gfx::Point> places{tool.startPoint(), tool.endPoint()};
    for (const ToolDetail& detail : tool.details()) {
        if (const auto* const points = std::get_if<std::vector<gfx::Point>>(&detail.value))
            places.insert(places.end(), points->begin(), points->end());
    }
    const gfx::Rect frame = tool.frame();
    for (const double x : {frame.minX(), frame.maxX()}) {
        for (const double y : {frame.minY(), frame.maxY()})
            places.push_back({x, y});
    }
    for (gfx::Point& place : places)
        place = tool.transformPoint(place);
    return places;
}

}  // namespace

std::optional<FoundHandle> handleUnder(MDrawMutableSelect& group, gfx::Point p) {
    const SelectionFrame frame = group.selectionFrame();
    const MoveDirection ofFrame = frame.handleAt(p);
    if (ofFrame != MoveDirection::None) return FoundHandle{ofFrame, frame.placeOf(ofFrame), true};
    if (group.subTools().size() != 1) return std::nullopt;
    MDrawTool& tool = *group.subTools().front();
    const MoveDirection before = tool.moveDirection();
    const bool isHit = tool.hitOnHandle(p);
    const MoveDirection part = tool.moveDirection();
    tool.setMoveDirection(before);
    if (!isHit || !isHandle(part)) return std::nullopt;
    const std::vector<gfx::Point> places = placesOf(tool);
    const auto nearest = std::ranges::min_element(
        places, {}, [p](gfx::Point place) { return QVPointDistance(place, p); });
    return FoundHandle{part, *nearest, false};
}

// Ends of lines go along them, corners of a tool's own away from its middle; points of other kinds
// are taken and carried.
ui::Cursor partCursor(const MDrawTool& tool, MoveDirection part, const gfx::AffineTransform& toView,
                      bool isHeld) {
    if (!isHandle(part) || part == MoveDirection::Place) return ui::Cursor::Move;
    if (part == MoveDirection::Start || part == MoveDirection::End)
        return resizeCursor(toView.apply(tool.endPoint()) - toView.apply(tool.startPoint()));
    const MovedSides sides = movedSides(part);
    if (sides != MovedSides{}) {
        const gfx::AffineTransform shown = tool.turning().concat(toView);
        return resizeCursor(shown.apply(gfx::Point{sides.x * 1.0, sides.y * 1.0}) -
                            shown.apply(gfx::Point{}));
    }
    return isHeld ? ui::Cursor::Grabbing : ui::Cursor::Grab;
}

}  // namespace kalim
