#include "kalimkit/canvas/HandleUnder.h"

#include <algorithm>
#include <vector>

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

bool isHandle(MoveDirection part) {
    return part != MoveDirection::None && part != MoveDirection::Body &&
           part != MoveDirection::GroupedLine;
}

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

}  // namespace kalim
