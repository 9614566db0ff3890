#include "kalimkit/canvas/CanvasSelection.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <set>
#include <utility>

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasFreehand.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasRestyling.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

bool CanvasSelection::isPickable(const MDrawTool& tool) const {
    return !tool.isLocked() && isReachable(tool);
}

bool CanvasSelection::isReachable(const MDrawTool& tool) const {
    return _canvas.tools.forgiving() || tool.toolClass().picking() == ToolPicking::Always;
}

bool CanvasSelection::isLive() const {
    return !_canvas.tools.pen().rules.fineHandles || _canvas.finger.isDragging() ||
           _rotation.tools || _canvas.arrangement.isNudging();
}

bool CanvasSelection::isLocked() const {
    return _group && std::ranges::any_of(_group->subTools(), &MDrawTool::isLocked);
}

std::shared_ptr<MDrawMutableSelect> CanvasSelection::changeable() const {
    if (!isValid()) return nullptr;
    if (!isLocked()) return _group;
    const auto group = makeGroup();
    for (const ToolRef& tool : _group->subTools()) {
        if (!tool->isLocked()) group->addSubTool(tool);
    }
    return group->isValidTools() ? group : nullptr;
}

ToolList CanvasSelection::withGroups(const ToolList& tools) const {
    std::set<std::int64_t> groups;
    for (const ToolRef& tool : tools) {
        if (!tool->groups().empty()) groups.insert(tool->groups().front());
    }
    if (groups.empty()) return tools;
    ToolList fellows;
    for (const ToolRef& tool : _canvas.tools.list()) {
        const bool isFellow = !tool->groups().empty() && groups.contains(tool->groups().front());
        if ((isFellow && isPickable(*tool)) || std::ranges::find(tools, tool) != tools.end())
            fellows.push_back(tool);
    }
    return fellows;
}

std::shared_ptr<MDrawMutableSelect> CanvasSelection::makeGroup() const {
    const auto group = MDrawMutableSelect::make();
    group->setRules(_canvas.tools.pen().rules);
    return group;
}

// ---- choosing

void CanvasSelection::select(const ToolList& tools) {
    // Letting go may end a rotation as a step, and a step may take tools off the canvas.
    drop();
    const auto group = makeGroup();
    for (const ToolRef& tool : tools) {
        const bool isFree =
            _canvas.tools.contains(tool) && !tool->isNewBuild() && isReachable(*tool);
        if (!isFree || group->containTool(tool)) continue;
        group->addSubTool(tool);
    }
    if (group->isValidTools()) {
        group->setSelected(true);
        _group = group;
    }
    notify();
    _canvas.home.redisplay();
}

void CanvasSelection::clear() {
    if (!_group) return;
    drop();
    notify();
    _canvas.home.redisplay();
}

void CanvasSelection::add(const ToolRef& tool, gfx::Point p) {
    _taps.remember(tool, ui::Environment::current().wallClock());
    if (_canvas.freehand.isUnderWay()) return;
    if (_group && _group->subTools().size() == 1 && _group->firstSelectedTool() != tool) {
        remove(_group->firstSelectedTool());
    }
    // The owner, told of it, may have taken the tool off the canvas.
    if (!_canvas.tools.contains(tool)) return;
    if (!_group) _group = makeGroup();
    if (_group->containTool(tool)) {
        remove(tool);
        return;
    }
    _group->addSubTool(tool);
    tool->hitOnHandle(p);
    tool->setSelected(true);
    // Only a finger that has moved has hold of it.
    if (_canvas.tools.forgiving() && !_canvas.finger.hasMoved()) {
        tool->setMoveDirection(MoveDirection::None);
    }
    notify();
}

void CanvasSelection::pick(const ToolRef& tool, gfx::Point p) {
    if (!_canvas.tools.forgiving()) return add(tool, p);
    if (_group && _group->subTools().size() > 1 && !contains(tool)) clear();
    const ToolList fellows = withGroups({tool});
    if (fellows.size() < 2) return add(tool, p);
    select(fellows);
    // Of several nothing is near a handle of theirs yet.
    if (_group) _group->setMoveDirection(MoveDirection::Body);
}

void CanvasSelection::toggle(const ToolRef& tool, bool withGroup) {
    const ToolList toggled = withGroup ? withGroups({tool}) : ToolList{tool};
    ToolList tools = _group ? _group->subTools() : ToolList();
    const bool isLeaving = contains(tool);
    for (const ToolRef& each : toggled) {
        std::erase(tools, each);
        if (!isLeaving) tools.push_back(each);
    }
    select(tools);
}

void CanvasSelection::readyForScreen() const {
    if (!_group) return;
    _canvas.tools.scaleForScreen(*_group);
    const ZoomedCanvasView& view = _canvas.home.view();
    const ui::EdgeInsets& margin = view.layoutMargin();
    const gfx::Rect bounds = view.bounds();
    const gfx::Rect room = gfx::Rect::spanning(
        bounds.origin + gfx::Point{margin.left, margin.top},
        gfx::Point{bounds.maxX() - margin.right, bounds.maxY() - margin.bottom});
    _group->setSight(view.mViewTransform().inverted().apply(room));
}

void CanvasSelection::remove(const ToolRef& tool) {
    if (!contains(tool)) return;
    const ToolRef kept = tool;  // The caller's reference may be an element of the group's list.
    endStepUnderWay();
    if (!contains(kept)) return;
    // What is let go stays as it was drawn.
    if (_canvas.tools.forgiving()) kept->setMoveDirection(MoveDirection::None);
    _group->removeSubTool(kept);
    kept->setSelected(false);
    kept->finalize();
    if (!_group->isValidTools()) _group = nullptr;
    notify();
}

void CanvasSelection::dropAbsent() {
    if (!_group) return;
    ToolList absent;
    for (const ToolRef& tool : _group->subTools()) {
        if (!_canvas.tools.contains(tool)) absent.push_back(tool);
    }
    if (!absent.empty()) _canvas.finger.forgetDragged();
    if (!absent.empty() && absent.size() == _group->subTools().size()) {
        // Nothing of it is left to be turned.
        if (_rotation.tools == _group) _rotation.isOver = true;
        _rotation.tools = nullptr;
        clear();
        return;
    }
    for (const ToolRef& tool : absent)
        remove(tool);
}

// Lets go without a word.
void CanvasSelection::drop() {
    endStepUnderWay();
    const auto dropped = std::exchange(_group, nullptr);
    if (!dropped) return;
    if (_canvas.tools.forgiving()) dropped->releaseHandles();
    dropped->setSelected(false);
    dropped->finalize();
}

void CanvasSelection::recordChange(const ToolRef& members) {
    if (_canvas.restyling.isUnderWay()) return _canvas.restyling.show();
    _canvas.tools.record(members);
    _canvas.home.redisplay();
}

void CanvasSelection::notify() {
    const auto owner = _canvas.home.owner();
    if (!owner) return;
    owner->seletedToolsStateChanged(isValid());
    // Asked for only now: the first message may have changed the selection.
    const ToolRef first = _group ? _group->firstSelectedTool() : nullptr;
    owner->currentSelectedToolsPropertyChangedColorLineWidth(getToolTypeForClass(first.get()),
                                                             first ? first->color() : nullptr,
                                                             first ? first->lineWidth() : 0.0);
}

void CanvasSelection::endStepUnderWay() {
    _canvas.restyling.breakOff();
    _canvas.finger.endDrag();
    endRotationUnderWay();
    endNudging();
}

void CanvasSelection::endNudging() {
    _canvas.arrangement.endNudging();
}

// ---- taps

bool CanvasSelection::isSecondTap(const ToolRef& tool) const {
    return _taps.isSecondTap(tool, ui::Environment::current().wallClock());
}

// ---- two fingers

void CanvasSelection::turn(ui::GestureState state, double angle, bool mayTurn) {
    const bool isEnding = state == ui::GestureState::Ended ||
                          state == ui::GestureState::Cancelled || state == ui::GestureState::Failed;
    // The first of turn and pinch that is recognised keeps the fingers.
    const bool isOver = (state != ui::GestureState::Began && _rotation.isOver) ||
                        (!mayTurn && !_rotation.holdsFingers);
    const bool turns = !isOver && std::isfinite(angle) && _canvas.home.view().enableGesture() &&
                       isValid() && !isLocked() && _group->isSupportGestureRotate();
    _rotation.isOver = isOver && !isEnding;
    _rotation.holdsFingers = turns && !isEnding;
    if (!turns) return;
    if (_canvas.tools.forgiving() && _rotation.tools != _group) _group->beginRotation();
    if (isEnding) {
        endRotation(angle);
    } else if (state == ui::GestureState::Changed) {
        _rotation.tools = _group;
        _rotation.angle = angle;
        _group->rotateChangedWithAngle(angle);
    }
    _canvas.home.redisplay();
}

// Ends as a step of its own what the fingers may not go on turning.
void CanvasSelection::endRotationUnderWay() {
    if (!_group || _rotation.tools != _group) return;
    _rotation.isOver = true;
    endRotation(_rotation.angle);
}

void CanvasSelection::endRotation(double angle) {
    _rotation.tools = nullptr;
    _group->rotateEndedWithAngle(angle);
    _canvas.tools.record(_group);
}

}  // namespace kalim
