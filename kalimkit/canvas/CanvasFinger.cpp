#include "kalimkit/canvas/CanvasFinger.h"

#include <utility>

#include "kalimkit/canvas/CanvasFreehand.h"
#include "kalimkit/canvas/CanvasGrip.h"
#include "kalimkit/canvas/CanvasHistory.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

// ---- touches

bool CanvasFinger::began(const ui::TouchEvent& event) {
    ZoomedCanvasView& view = _canvas.home.view();
    if (const auto owner = _canvas.home.owner()) owner->didDrawStarted();
    // The owner, told of it, may have taken the view away or the fingers off it.
    const ui::Touch& touch = *event.touches.front();
    _keys = event.modifiers;
    if (!view.window() || touch.phase() == ui::TouchPhase::Cancelled) return false;
    _isAlone = event.allTouches.size() == 1;
    if (_isAlone) {
        comeDown(touch);
        down(placeOf(touch));
    } else {
        join();
    }
    tellDrawnOver();
    return true;
}

void CanvasFinger::moved(const ui::TouchEvent& event) {
    const ui::Touch& touch = *event.touches.front();
    _keys = event.modifiers;
    feel(touch);
    if (!staysAlone(event)) {
        isPlacing() ? letGoOfPoint() : deleteCreated();
    } else if (!isTapping(touch)) {
        ZoomedCanvasView& view = _canvas.home.view();
        // Steps that were not taken count once the drag goes on.
        const gfx::Point from = _canvas.tools.forgiving()
                                    ? _takenPoint
                                    : view.invertViewPoint(touch.previousLocationIn(&view));
        move(from, placeOf(touch));
        showLoupe(touch);
    }
    tellDrawnOver();
}

void CanvasFinger::ended(const ui::TouchEvent& event) {
    _keys = event.modifiers;
    feel(*event.touches.front());
    if (staysAlone(event)) {
        up(placeOf(*event.touches.front()));
    } else {
        isPlacing() ? letGoOfPoint() : deleteCreated();
    }
    tellDrawnOver();
}

void CanvasFinger::cancelled(const ui::TouchEvent& event) {
    const bool isDone = _canvas.tools.forgiving() && !_hasMoved;
    if (event.touches.front()->isRejected()) {
        takeBack();
        enter(FingerState::Idle);
    } else if (isPlacing()) {
        letGoOfPoint();
        enter(FingerState::Idle);
    } else if (staysAlone(event) && !isDone) {
        up(lastMovePoint());
    } else {
        deleteCreated();
        enter(FingerState::Idle);
    }
    tellDrawnOver();
}

bool CanvasFinger::staysAlone(const ui::TouchEvent& event) {
    _isAlone = _isAlone && event.allTouches.size() == 1;
    return _isAlone;
}

gfx::Point CanvasFinger::placeOf(const ui::Touch& touch) const {
    const ZoomedCanvasView& view = _canvas.home.view();
    return view.invertViewPoint(touch.locationIn(&view));
}

// Where a second finger or a cancel ends a creation. The stored point is a canvas point already; by
// itself the canvas deliberately converts it once more.
gfx::Point CanvasFinger::lastMovePoint() const {
    // What was put down and not moved yet stays where it is.
    if (!_hasMoved && isCreating(ToolRecorder::Touch)) return _downPoint;
    return _canvas.tools.forgiving() ? _movePoint : _canvas.home.view().invertViewPoint(_movePoint);
}

bool CanvasFinger::isTapping(const ui::Touch& touch) const {
    return isStillTapping(
        {.forgiving = _canvas.tools.forgiving(),
         .isMoved = _hasMoved,
         .hasSelection = _canvas.selection.isValid(),
         .isOnSelection = _meaning.dragsSelection,
         .canvasDistance = QVPointDistance(_downPoint, placeOf(touch)) * _canvas.tools.touchScale(),
         .viewDistance = QVPointDistance(_downPlace, touch.locationIn(&_canvas.home.view()))});
}

// What a finger draws or drags may lie under a part of the owner's screen.
void CanvasFinger::tellDrawnOver() {
    const bool isDragging = _hasMoved && _meaning.dragsSelection;
    ToolRef live;
    const bool isOverPoints = isPlacing() && _state == FingerState::Idle;
    if (_isAlone && isCreating() && !isOverPoints) {
        live = _tool;
    } else if (_isAlone && isDragging) {
        live = _canvas.selection.group();
    }
    if (!live && !_isDrawingOver) return;
    _isDrawingOver = live != nullptr;
    const auto owner = _canvas.home.owner();
    if (!owner) return;
    if (!live) return owner->didDrawOver(std::nullopt);
    // Turned or not: as good as exact for what it is asked for, and the same effort at every move.
    const double reach = -live->lineWidth() / 2;
    owner->didDrawOver(
        _canvas.home.view().mViewTransform().apply(live->frame().inset(reach, reach)));
}

// ---- from one state to the next

void CanvasFinger::enter(FingerState state) {
    const bool goesOn = state == FingerState::Drawing || state == FingerState::Dragging;
    if (goesOn) _hasMoved = true;
    if (state == FingerState::Tapping) _hasMoved = false;
    if (!goesOn) hideLoupe();
    if (state != FingerState::Dragging) {
        _canvas.grip.release();
        _canvas.screen.showMarquee(std::nullopt);
    }
    _state = state;
}

void CanvasFinger::down(gfx::Point p) {
    if (isPlacing()) return leadPoint(p);
    // A tool that a gesture without an end left is drawn on.
    if (isCreating()) return;
    _canvas.selection.endNudging();
    if (_canvas.typing.endByTouch()) {
        enter(FingerState::Aborted);
        return _canvas.home.redisplay();
    }
    enter(FingerState::Tapping);
    _dragged = nullptr;
    _downPoint = _origin = p;
    _isHeldToKeys = false;
    _drawnPoint.reset();
    _takenPoint = p;
    _movePoint = {};
    const auto& group = _canvas.selection.group();
    _selectedBefore = group ? group->subTools() : ToolList();
    _canvas.selection.readyForScreen();
    const bool isOnSelection = group && !_canvas.selection.isLocked() && group->testHitOnHandle(p);
    _found = isOnSelection ? nullptr : _canvas.tools.topmostAt(p);
    const ToolClass* toolClass = _canvas.tools.pen().toolClass;
    _meaning =
        meaningOf({.forgiving = _canvas.tools.forgiving(),
                   .isOnSelection = isOnSelection,
                   .isOnTool = _found != nullptr,
                   .hasSelection = _canvas.selection.isValid(),
                   .hasClass = toolClass != nullptr,
                   .beginsAtOnce = toolClass && toolClass->beginning() == ToolBeginning::TouchDown,
                   .wantsMarquee = _canvas.tools.forgiving() && _keys.control});
    if (_canvas.tools.forgiving() && (isOnSelection || _found)) _canvas.freehand.endWaiting();
    if (isOnSelection) {
        if (group) group->hitOnHandle(p);
        _canvas.grip.take(p);
    } else if (_meaning.createsAtOnce) {
        _canvas.selection.clear();
        create(p);
        _canvas.home.redisplay();
    }
}

void CanvasFinger::move(gfx::Point from, gfx::Point to) {
    _movePoint = to;
    if (_state == FingerState::Aborted) return;
    if (_meaning.spansMarquee) return spanMarquee(to);
    enter(_meaning.draws ? FingerState::Drawing : FingerState::Dragging);
    if (_meaning.draws && !isCreating()) {
        _canvas.selection.clear();
        // The owner, told of it, may have stopped the drawing.
        if (_meaning.draws) create(_downPoint);
    }
    _canvas.home.redisplay();
    if (_meaning.draws && isCreating()) {
        if (!_keys.shift || !_tool->drawStraight(to)) drawTo(to);
        watchRest(_canvas.home.view().mViewTransform().apply(to));
        return;
    }
    if (!_meaning.dragsSelection) takeHold();
    if (_canvas.selection.isValid() && !_canvas.selection.isLocked()) drag(from, to);
}

void CanvasFinger::drag(gfx::Point from, gfx::Point to) {
    _dragged = _canvas.selection.group();
    if (!_canvas.grip.drags(_keys)) {
        _takenPoint = _dragged->tryMovePointEndPoint(from, to);
        return;
    }
    _canvas.grip.dragTo(to, _keys);
    _takenPoint = to;
}

// What was under the finger is what it drags from now on.
void CanvasFinger::takeHold() {
    _canvas.selection.clear();
    const ToolRef found = std::exchange(_found, nullptr);
    if (!found) return;
    _canvas.selection.pick(found, _downPoint);
    // A pointer takes hold of handles that it sees.
    _canvas.grip.take(_downPoint, _canvas.tools.pen().rules.fineHandles);
    _meaning.dragsSelection = true;
}

void CanvasFinger::up(gfx::Point p) {
    forgetRest();
    if (_state != FingerState::Aborted && !finishCreation(p)) {
        if (_meaning.spansMarquee && _hasMoved) {
            finishMarquee(p);
        } else if (_hasMoved) {
            finishDrag();
        } else {
            finishTap(p);
        }
    }
    enter(FingerState::Idle);
    _hasMoved = false;
    _canvas.home.redisplay();
}

// Several fingers turn the selection, or zoom and move the view.
void CanvasFinger::join() {
    if (isYoung()) {
        takeBack();
    } else if (isPlacing()) {
        letGoOfPoint();
    } else if (_canvas.selection.isValid() || isCreating(ToolRecorder::Typing)) {
        endDrag();
        deleteCreated();
    } else if (isCreating()) {
        up(lastMovePoint());
    }
    enter(FingerState::Idle);
}

void CanvasFinger::abort() {
    if (_state != FingerState::Idle) enter(FingerState::Aborted);
}

void CanvasFinger::forgetTools() {
    // Nothing of a gesture under way survives, or the next touch would wait for its end.
    forgetRest();
    _tool = _stroke = nullptr;
    _found = nullptr;
    drawNoMore();
}

// ---- drawing

bool CanvasFinger::isCreating() const {
    return _tool && _tool->isNewBuild();
}

bool CanvasFinger::isCreating(ToolRecorder recorder) const {
    return isCreating() && _tool->toolClass().recorder() == recorder;
}

void CanvasFinger::create(gfx::Point p) {
    if (!_canvas.tools.pen().toolClass) return;
    if (_canvas.tools.forgiving()) _canvas.freehand.endOfOtherPen();
    const ToolRef tool = makeTool(p);
    _canvas.tools.prepare(*tool);
    tool->takeContact(_downContact);
    _tool = tool;
    _canvas.tools.add(tool);
    _canvas.screen.markCreated(tool);
    // The ink begins where the finger came down.
    if (_canvas.tools.forgiving() && isCreating(ToolRecorder::Strokes)) tool->drawMove(p);
    tool->takeContact(_contact);
}

ToolRef CanvasFinger::makeTool(gfx::Point p) {
    const ToolClass& kind = *_canvas.tools.pen().toolClass;
    if (kind.recorder() == ToolRecorder::Strokes) return _canvas.freehand.drawingAt(p, kind);
    const ToolRef tool = kind.makeWithStartPoint(p);
    _canvas.typing.adopt(tool);
    return tool;
}

bool CanvasFinger::finishCreation(gfx::Point p) {
    if (!_meaning.draws || !isCreating()) return false;
    const ToolClass& kind = _tool->toolClass();
    if (kind.beginning() == ToolBeginning::Taps) {
        setPoint(p);
        return true;
    }
    if (!_hasMoved && kind.beginning() != ToolBeginning::TouchDown) return false;
    const bool isFreehand = kind.recorder() == ToolRecorder::Strokes;
    const ToolRef tool = _tool;
    tool->drawUp(drawnEnd(p));
    // The owner, told of a text that is typed from now on, may have ended it.
    if (_tool != tool) return true;
    // No longer under way when the owner is told of the step: it may ask for the picture then.
    _tool = nullptr;
    if (_stroke) {
        finishStraightening(tool);
    } else if (!tool->isDrawVaild()) {
        _canvas.tools.discard(tool);
        _canvas.freehand.end();
    } else if (kind.recorder() != ToolRecorder::Touch) {
        // Recorded when the text has been typed, and when the drawing has faded in.
        _canvas.selection.clear();
    } else {
        _canvas.tools.record(tool);
        tool->setIsNewBuild(false);
    }
    if (isFreehand) _canvas.freehand.endStroke();
    // Every further stroke finds the owner told already.
    if (_canvas.freehand.isFirstStrokeWaiting()) _canvas.history.tell();
    return true;
}

void CanvasFinger::stopDrawing() {
    // A text that nobody has typed yet is nothing.
    if (isPlacing()) {
        completePoints();
    } else if (isCreating(ToolRecorder::Typing)) {
        deleteCreated();
    } else {
        finishCreation(_hasMoved ? _movePoint : _downPoint);
    }
    drawNoMore();
}

void CanvasFinger::drawNoMore() {
    _meaning.draws = false;
    if (_state == FingerState::Drawing) enter(FingerState::Dragging);
}

void CanvasFinger::endCreation() {
    if (isCreating() && !isCreating(ToolRecorder::Typing)) {
        stopDrawing();
        abort();
    }
    _canvas.freehand.end();
}

void CanvasFinger::deleteCreated() {
    if (!isCreating()) return;
    forgetRest();
    if (_stroke) return giveUpStraightening();
    const ToolRef tool = std::exchange(_tool, nullptr);
    // A text that is being typed takes its field along.
    if (_canvas.typing.text() == tool) _canvas.typing.end();
    // It does not wait for more strokes, and is no step.
    if (_canvas.tools.forgiving() && tool->toolClass().recorder() == ToolRecorder::Strokes)
        _canvas.freehand.drop();
    if (_canvas.tools.contains(tool)) _canvas.tools.discard(tool);
    tool->setIsNewBuild(false);
    _canvas.freehand.end();
    _canvas.home.redisplay();
}

void CanvasFinger::letGoOf(const ToolRef& tool) {
    if (_tool == tool) _tool = _stroke = nullptr;
}

// A tap that picks nothing and lets nothing go is ink, too.
bool CanvasFinger::makesDot() const {
    const ToolClass* kind = _canvas.tools.pen().toolClass;
    return _canvas.tools.forgiving() && _meaning.draws && !_canvas.selection.group() && kind &&
           kind->recorder() == ToolRecorder::Strokes;
}

void CanvasFinger::makeDot(gfx::Point p) {
    create(_downPoint);
    enter(FingerState::Drawing);
    finishCreation(p);
}

}  // namespace kalim
