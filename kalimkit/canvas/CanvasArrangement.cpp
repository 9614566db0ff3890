#include "kalimkit/canvas/CanvasArrangement.h"

#include <algorithm>
#include <utility>

#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasHistory.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/canvas/MemberStates.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Seconds within which moves by keys are one.
constexpr double nudgePause = 1;
// Canvas points that are left of a side.
constexpr double leastSide = 1;

gfx::Rect boundsOf(const ToolList& tools) {
    gfx::Rect bounds = tools.front()->shownFrame();
    for (const ToolRef& tool : tools)
        bounds = bounds.unionWith(tool->shownFrame());
    return bounds;
}

std::int64_t outerGroup(const MDrawTool& tool) {
    return tool.groups().empty() ? 0 : tool.groups().front();
}

}  // namespace

// Whether anything is selected once all else has come to its end.
bool CanvasArrangement::begin() {
    _canvas.typing.finish();
    _canvas.finger.endCreation();
    _canvas.selection.endStepUnderWay();
    return _canvas.selection.isValid();
}

// In drawing order, whichever way they were selected.
ToolList CanvasArrangement::movable() const {
    ToolList tools;
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (_canvas.selection.contains(tool) && !tool->isLocked()) tools.push_back(tool);
    }
    return tools;
}

std::vector<CanvasArrangement::Unit> CanvasArrangement::unitsOf(const ToolList& tools) {
    std::vector<Unit> units;
    for (const ToolRef& tool : tools) {
        const auto fellow = std::ranges::find_if(units, [&](const Unit& unit) {
            const std::int64_t group = outerGroup(*tool);
            return group != 0 && outerGroup(*unit.tools.front()) == group;
        });
        if (fellow == units.end()) {
            units.push_back({{tool}, {}});
        } else {
            fellow->tools.push_back(tool);
        }
    }
    for (Unit& unit : units)
        unit.frame = boundsOf(unit.tools);
    return units;
}

bool CanvasArrangement::record(const ToolList& tools) {
    if (tools.empty()) return false;
    const auto changed = MDrawMutableSelect::make();
    for (const ToolRef& tool : tools)
        changed->addSubTool(tool);
    _canvas.tools.record(changed);
    _canvas.home.redisplay();
    return true;
}

// ---- choosing

bool CanvasArrangement::selectAll() {
    begin();
    ToolList tools;
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (_canvas.selection.isPickable(*tool)) tools.push_back(tool);
    }
    _canvas.selection.select(tools);
    return !tools.empty();
}

bool CanvasArrangement::selectAt(gfx::Point p) {
    begin();
    const ToolRef tool = _canvas.tools.topmostAt(p);
    if (!tool || !_canvas.selection.isPickable(*tool)) return false;
    if (!_canvas.selection.contains(tool))
        _canvas.selection.select(_canvas.selection.withGroups({tool}));
    return _canvas.selection.isValid();
}

bool CanvasArrangement::selectWithin(const gfx::Rect& rect) {
    begin();
    ToolList tools;
    for (const ToolRef& tool : _canvas.tools.list()) {
        const gfx::Rect frame = tool->shownFrame();
        // A line that runs straight has a frame without an area, and is met all the same.
        const bool isMet = frame.inset(-0.5, -0.5).intersects(rect) && !frame.contains(rect);
        if (isMet && _canvas.selection.isPickable(*tool)) tools.push_back(tool);
    }
    _canvas.selection.select(_canvas.selection.withGroups(tools));
    return !tools.empty();
}

// ---- places

// From the canvas to how the picture is turned on the screen.
gfx::AffineTransform CanvasArrangement::toSeen() const {
    return gfx::AffineTransform::quarterTurn(_canvas.tools.quarterTurns());
}

// Changes by keys that follow each other quickly are one step.
template <typename Change>
bool CanvasArrangement::changeByKey(Change change) {
    // A finger that drags them says where they are.
    if (_canvas.finger.hasMoved()) return false;
    if (!isNudging() && !begin()) return false;
    const ToolList tools = movable();
    if (tools.empty() || !change(tools)) return false;
    const bool isFirst = !isNudging();
    _nudged = _canvas.selection.group();
    ui::RunLoop& loop = ui::Environment::current().runLoop();
    if (_nudgingEnd) loop.cancel(_nudgingEnd);
    _nudgingEnd = loop.after(nudgePause, [weak = std::weak_ptr(_canvas.home.held(*this))] {
        const auto self = weak.lock();
        if (self) self->endNudging();
    });
    _canvas.home.redisplay();
    if (isFirst) _canvas.history.tell();
    return true;
}

bool CanvasArrangement::nudge(gfx::Point offset) {
    if (offset == gfx::Point{}) return false;
    const gfx::Point moved = toSeen().inverted().apply(offset);
    return changeByKey([moved](const ToolList& tools) {
        for (const ToolRef& tool : tools)
            tool->moveBy(moved);
        return true;
    });
}

bool CanvasArrangement::resize(gfx::Point growth) {
    if (!_canvas.tools.forgiving() || growth == gfx::Point{}) return false;
    return changeByKey([this, growth](const ToolList& tools) {
        const gfx::Rect seen = toSeen().apply(boundsOf(tools));
        const bool hasRoom = (growth.x >= 0 || seen.size.width + growth.x >= leastSide) &&
                             (growth.y >= 0 || seen.size.height + growth.y >= leastSide);
        if (!hasRoom) return false;
        const MemberStates before(tools);
        stretch(tools, growth);
        if (std::ranges::all_of(tools, &MDrawTool::isDrawVaild)) return true;
        before.restore();
        return false;
    });
}

// The corner at the top left stays, as it is seen. A line that runs along an axis has no box to
// grow across it: its end goes there.
void CanvasArrangement::stretch(const ToolList& tools, gfx::Point growth) const {
    const gfx::AffineTransform toCanvas = toSeen().inverted();
    const gfx::Rect seen = toSeen().apply(boundsOf(tools));
    const auto factorOf = [](double size, double more) {
        return size < leastSide ? 1 : (size + more) / size;
    };
    gfx::Size factors{factorOf(seen.size.width, growth.x), factorOf(seen.size.height, growth.y)};
    MDrawTool& first = *tools.front();
    if (tools.size() == 1 && factors == gfx::Size{1, 1} &&
        first.toolClass().span() == ToolSpan::Line) {
        first.setEndPoint(first.endPoint() + toCanvas.apply(growth));
        return;
    }
    if (_canvas.tools.quarterTurns() % 2 != 0) std::swap(factors.width, factors.height);
    const gfx::Point fixed = toCanvas.apply(seen.origin);
    for (const ToolRef& tool : tools)
        tool->scaleBy(fixed, factors);
}

bool CanvasArrangement::turn(double angle) {
    const auto& group = _canvas.selection.group();
    const bool canTurn = _canvas.tools.forgiving() && group && group->isSupportGestureRotate();
    if (!canTurn || _canvas.selection.isLocked() || angle == 0) return false;
    return changeByKey([angle](const ToolList& tools) {
        const gfx::Point middle = boundsOf(tools).center();
        for (const ToolRef& tool : tools)
            tool->turnBy(middle, angle);
        return true;
    });
}

void CanvasArrangement::endNudging() {
    if (_nudgingEnd) ui::Environment::current().runLoop().cancel(std::exchange(_nudgingEnd, 0));
    const auto nudged = std::exchange(_nudged, nullptr);
    const auto isHere = [this](const ToolRef& tool) { return _canvas.tools.contains(tool); };
    if (nudged && std::ranges::all_of(nudged->subTools(), isHere)) _canvas.tools.record(nudged);
}

std::vector<gfx::Rect> CanvasArrangement::seenFrames(const std::vector<Unit>& units) const {
    std::vector<gfx::Rect> frames;
    for (const Unit& unit : units)
        frames.push_back(toSeen().apply(unit.frame));
    return frames;
}

// By offsets as they are seen.
bool CanvasArrangement::moveUnits(const std::vector<Unit>& units,
                                  const std::vector<gfx::Point>& offsets) {
    const gfx::AffineTransform toCanvas = toSeen().inverted();
    ToolList moved;
    for (std::size_t i = 0; i < units.size(); ++i) {
        if (offsets[i] == gfx::Point{}) continue;
        for (const ToolRef& tool : units[i].tools) {
            tool->moveBy(toCanvas.apply(offsets[i]));
            moved.push_back(tool);
        }
    }
    return record(moved);
}

bool CanvasArrangement::align(Alignment alignment) {
    if (!begin()) return false;
    const std::vector<Unit> units = unitsOf(movable());
    if (units.empty()) return false;
    const std::vector<gfx::Rect> frames = seenFrames(units);
    gfx::Rect within = frames.front();
    for (const gfx::Rect& frame : frames)
        within = within.unionWith(frame);
    if (units.size() == 1) {
        if (!_canvas.shown.picture.source()) return false;
        within = toSeen().apply(_canvas.shown.picture.part());
    }
    return moveUnits(units, alignmentOffsets(frames, alignment, within));
}

bool CanvasArrangement::distribute(Direction direction) {
    if (!begin()) return false;
    const std::vector<Unit> units = unitsOf(movable());
    return moveUnits(units, distributionOffsets(seenFrames(units), direction));
}

bool CanvasArrangement::changeOrder(OrderChange change) {
    if (!begin()) return false;
    const ToolList chosen = movable();
    const ToolList& list = _canvas.tools.list();
    std::vector<OrderedPlace> places;
    for (const ToolRef& tool : list)
        places.push_back({std::ranges::find(chosen, tool) != chosen.end(),
                          static_cast<int>(tool->toolClass().layer())});
    ToolPlacements placements;
    const std::vector<std::size_t> order = changedOrder(places, change);
    for (std::size_t place = 0; place < order.size(); ++place) {
        if (places[order[place]].isChosen) placements.push_back({list[order[place]], place});
    }
    return _canvas.history.reorder(std::move(placements));
}

// ---- groups and locks

std::int64_t CanvasArrangement::nextGroup() const {
    std::int64_t last = 0;
    for (const ToolRef& tool : _canvas.tools.list()) {
        for (const std::int64_t group : tool->groups())
            last = std::max(last, group);
    }
    return last + 1;
}

bool CanvasArrangement::group() {
    if (!begin()) return false;
    const ToolList tools = movable();
    if (unitsOf(tools).size() < 2) return false;
    const std::int64_t number = nextGroup();
    for (const ToolRef& tool : tools) {
        std::vector<std::int64_t> groups = tool->groups();
        groups.insert(groups.begin(), number);
        tool->setGroups(std::move(groups));
    }
    return record(tools);
}

bool CanvasArrangement::ungroup() {
    if (!begin()) return false;
    ToolList tools = movable();
    std::erase_if(tools, [](const ToolRef& tool) { return tool->groups().empty(); });
    for (const ToolRef& tool : tools)
        tool->setGroups({tool->groups().begin() + 1, tool->groups().end()});
    return record(tools);
}

bool CanvasArrangement::lock() {
    if (!begin()) return false;
    const ToolList tools = movable();
    for (const ToolRef& tool : tools)
        tool->setLocked(true);
    if (!record(tools)) return false;
    _canvas.selection.clear();
    return true;
}

bool CanvasArrangement::unlock() {
    const bool isOfAll = !begin();
    ToolList tools;
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (tool->isLocked() && (isOfAll || _canvas.selection.contains(tool)))
            tools.push_back(tool);
    }
    for (const ToolRef& tool : tools)
        tool->setLocked(false);
    if (!record(tools)) return false;
    if (isOfAll) _canvas.selection.select(tools);
    return true;
}

}  // namespace kalim
