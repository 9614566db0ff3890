#include "kalimkit/canvas/CanvasGrip.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/DrawnSpan.h"

namespace kalim {

namespace {

// How near others draw what is dragged, points of the screen.
constexpr double snapReach = 6;
// No group is made smaller than this share of its size at once.
constexpr double leastFactor = 0.001;

double angleOf(gfx::Point p, gfx::Point center) {
    return std::atan2(p.y - center.y, p.x - center.x);
}

}  // namespace

void CanvasGrip::take(gfx::Point p, bool ofAll) {
    release();
    if (!_canvas.tools.forgiving() || !_canvas.selection.isValid()) return;
    _group = _canvas.selection.group();
    _part = ofAll ? MoveDirection::Body : _group->grip();
    _isOfFrame = !ofAll && _group->ownsGrip();
    _base = MemberStates(_group->subTools());
    _frame = _group->firstSelectedTool()->shownFrame();
    for (const ToolRef& member : _group->subTools())
        _frame = _frame.unionWith(member->shownFrame());
    const MDrawTool& first = *_group->firstSelectedTool();
    _box = first.frame();
    _turn = first.turning();
    _angle = first.rotateAngle();
    _down = _goodPoint = p;
    _goodKeys = {};
    _isOwn = ofAll || _group->subTools().size() > 1;
}

void CanvasGrip::release() {
    _group = nullptr;
    _base = {};
    _targets.reset();
    _isOwn = false;
    if (!std::exchange(_guides, {}).empty()) _canvas.screen.showGuides({});
}

void CanvasGrip::putBack() {
    _base.restore();
}

bool CanvasGrip::drags(const ui::Modifiers& keys) {
    // The host may have selected others while the finger is down.
    if (holds() && _group != _canvas.selection.group()) release();
    if (!holds()) return false;
    const bool hasKeys = keys.shift || keys.alt;
    const bool isLaidAlong =
        _snaps && (_part == MoveDirection::Body || movedSides(_part) != MovedSides{});
    _isOwn = _isOwn || _isOfFrame || hasKeys || isLaidAlong;
    return _isOwn;
}

void CanvasGrip::dragTo(gfx::Point p, const ui::Modifiers& keys) {
    _guides.clear();
    if (apply(p, keys)) {
        _goodPoint = p;
        _goodKeys = keys;
    } else {
        apply(_goodPoint, _goodKeys);
        _guides.clear();
    }
    _canvas.screen.showGuides(_guides);
}

// Whether all members can be as they are then.
bool CanvasGrip::apply(gfx::Point p, const ui::Modifiers& keys) {
    _base.restore();
    const bool isSeveral = _group->subTools().size() > 1;
    const bool isOfBox = movedSides(_part) != MovedSides{};
    const bool spansBox = _group->firstSelectedTool()->toolClass().span() == ToolSpan::Box;
    if (_part == MoveDirection::Body) {
        move(p, keys);
    } else if (_part == MoveDirection::Turn) {
        turn(p, keys);
    } else if (isSeveral) {
        resizeGroup(p, keys);
    } else if (isOfBox && spansBox) {
        resizeTool(p, keys);
    } else {
        dragHandle(p, keys);
    }
    return std::ranges::all_of(_group->subTools(), &MDrawTool::isDrawVaild);
}

void CanvasGrip::move(gfx::Point p, const ui::Modifiers& keys) {
    gfx::Point offset = p - _down;
    if (keys.shift) offset = alongAxis(offset);
    if (isSnapping(keys)) {
        const Snap snap = targets().moved(_frame.offset(offset), reach());
        // What keys hold to one axis stays on it.
        const gfx::Point further = !keys.shift ? snap.offset
                                               : gfx::Point{offset.x == 0 ? 0 : snap.offset.x,
                                                            offset.y == 0 ? 0 : snap.offset.y};
        offset += further;
        if (further == snap.offset) _guides = snap.guides;
    }
    for (const ToolRef& member : _group->subTools())
        member->moveBy(offset);
}

void CanvasGrip::turn(gfx::Point p, const ui::Modifiers& keys) {
    const bool isSingle = _group->subTools().size() == 1;
    const gfx::Point center = isSingle ? _box.center() : _frame.center();
    double angle = angleOf(p, center) - angleOf(_down, center);
    const double before = isSingle ? _angle : 0;
    if (keys.shift) angle = steppedAngle(before + angle) - before;
    for (const ToolRef& member : _group->subTools())
        member->turnBy(center, angle);
}

// By the sides that are moved; what lies on the canvas's own axes is laid along others.
gfx::Point CanvasGrip::snapped(const gfx::Rect& box, gfx::Point offset, const ui::Modifiers& keys) {
    if (!isSnapping(keys) || keys.shift) return offset;
    const MovedSides sides = movedSides(_part);
    const gfx::Rect wanted = resizedBox(box, _part, offset, keys);
    const Snap snap = targets().resized(wanted, sides.x, sides.y, reach());
    _guides = snap.guides;
    return offset + snap.offset;
}

void CanvasGrip::resizeTool(gfx::Point p, const ui::Modifiers& keys) {
    MDrawTool& tool = *_group->firstSelectedTool();
    const gfx::AffineTransform toOwn = _turn.inverted();
    gfx::Point offset = toOwn.apply(p) - toOwn.apply(_down);
    if (_turn.isIdentity()) offset = snapped(_box, offset, keys);
    const gfx::Rect box = resizedBox(_box, _part, offset, keys);
    const gfx::Point fixed = fixedPoint(_box, _part, keys);
    // It is turned about another middle from now on: what stays in its place is seen there.
    const gfx::AffineTransform linear{_turn.a, _turn.b, _turn.c, _turn.d, 0, 0};
    const gfx::Point middle = _turn.apply(fixed) - linear.apply(fixed - box.center());
    const gfx::Point drift = middle - box.center();
    const gfx::Size factors{_box.size.width > 0 ? box.size.width / _box.size.width : 1,
                            _box.size.height > 0 ? box.size.height / _box.size.height : 1};
    tool.mapPoints([&](gfx::Point own) {
        return box.origin + drift +
               gfx::Point{(own.x - _box.minX()) * factors.width,
                          (own.y - _box.minY()) * factors.height};
    });
    tool.refreshTransform();
}

// Corners keep the proportions: texts, circles and what is turned stay what they are.
void CanvasGrip::resizeGroup(gfx::Point p, const ui::Modifiers& keys) {
    const MovedSides sides = movedSides(_part);
    ui::Modifiers held = keys;
    held.shift = keys.shift || (sides.x != 0 && sides.y != 0);
    // Fingers, which hold no keys, scale about the middle.
    held.alt = keys.alt || !_canvas.tools.pen().rules.fineHandles;
    const gfx::Point offset = snapped(_frame, p - _down, held);
    const gfx::Rect box = resizedBox(_frame, _part, offset, held);
    const auto factor = [](double after, double before) {
        return before > 0 ? std::max(after / before, leastFactor) : 1;
    };
    const gfx::Size factors{factor(box.size.width, _frame.size.width),
                            factor(box.size.height, _frame.size.height)};
    const gfx::Point fixed = fixedPoint(_frame, _part, held);
    for (const ToolRef& member : _group->subTools())
        member->scaleBy(fixed, factors);
}

// A handle that is the tool's own, such as the ends of a line.
void CanvasGrip::dragHandle(gfx::Point p, const ui::Modifiers& keys) {
    MDrawTool& tool = *_group->firstSelectedTool();
    const bool isStart = _part == MoveDirection::Start;
    const bool isEnd = _part == MoveDirection::End;
    if (!isStart && !isEnd) {
        tool.tryMovePointEndPoint(_down, p);
        return;
    }
    const gfx::Point start = _turn.apply(tool.startPoint());
    const gfx::Point end = _turn.apply(tool.endPoint());
    gfx::Point moved = (isStart ? start : end) + (p - _down);
    const gfx::Point other = isStart ? end : start;
    const gfx::Point fixed = keys.alt ? (start + end) * 0.5 : other;
    if (keys.shift) moved = steppedPoint(fixed, moved);
    const gfx::Point opposite = keys.alt ? fixed + fixed - moved : other;
    // Turned about the new middle, its points are seen there.
    const gfx::Point middle = (moved + opposite) * 0.5;
    const gfx::AffineTransform linear{_turn.a, _turn.b, _turn.c, _turn.d, 0, 0};
    const gfx::Point half = linear.inverted().apply(moved - middle);
    tool.setStartPoint(isStart ? middle + half : middle - half);
    tool.setEndPoint(isStart ? middle - half : middle + half);
    tool.refreshTransform();
}

// ---- what is laid along

double CanvasGrip::reach() const {
    return snapReach / _canvas.shown.zoom.shownScale();
}

// All that is in sight and stays where it is.
const SnapTargets& CanvasGrip::targets() {
    if (_targets) return *_targets;
    const ZoomedCanvasView& view = _canvas.home.view();
    const gfx::Rect sight = view.mViewTransform().inverted().apply(view.bounds());
    std::vector<gfx::Rect> boxes;
    for (const ToolRef& tool : _canvas.tools.list()) {
        if (tool->isNewBuild() || _group->containTool(tool)) continue;
        const gfx::Rect box = tool->shownFrame();
        if (sight.inset(-0.5, -0.5).intersects(box.inset(-0.5, -0.5))) boxes.push_back(box);
    }
    std::optional<gfx::Rect> picture;
    if (_canvas.shown.picture.source()) picture = _canvas.shown.picture.part();
    return _targets.emplace(boxes, picture);
}

}  // namespace kalim
