#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/TouchMeaning.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/loop/FlagScope.h"

namespace kalim {

// ---- touch messages

void MDrawView::touchesBegan(const ui::TouchEvent& event) {
    const auto alive = self();
    // Points are those of the view as it is now, also where it has not been displayed since.
    fitIntoView();
    if (const auto delegate = _drawViewdelegate.lock()) delegate->didDrawStarted();
    // The owner, told of it, may have taken the view away or the fingers off it.
    if (!window() || event.touches.front()->phase() == ui::TouchPhase::Cancelled) return;
    _touch.updateDrawStateTouches(TOUCH_PHASE_BEGAN, event.allTouches.size());
    if (_touch.isSingleFinger()) {
        _touch.downPlace = event.touches.front()->locationIn(this);
        drawDown(invertViewPoint(_touch.downPlace));
    } else if (isSelectionValid() || isCreating(ToolRecorder::Typing)) {
        endDragUnderWay();
        deleteCurrentHandlingTool();
    } else if (isBeingCreated()) {
        drawUp(lastMovePoint());
    }
    tellDrawnOver();
    View::touchesBegan(event);
}

void MDrawView::touchesMoved(const ui::TouchEvent& event) {
    const auto alive = self();
    _touch.updateDrawStateTouches(TOUCH_PHASE_MOVED, event.allTouches.size());
    const ui::Touch& touch = *event.touches.front();
    if (!_touch.isSingleFinger()) {
        deleteCurrentHandlingTool();
    } else if (!isTapping(touch)) {
        // Steps that were not taken count once the drag goes on.
        const gfx::Point from =
            forgiving() ? _touch.lastTakenPoint : invertViewPoint(touch.previousLocationIn(this));
        drawMoveFromPointToPoint(from, invertViewPoint(touch.locationIn(this)));
    }
    tellDrawnOver();
    View::touchesMoved(event);
}

void MDrawView::touchesEnded(const ui::TouchEvent& event) {
    const auto alive = self();
    _touch.updateDrawStateTouches(TOUCH_PHASE_ENDED, event.allTouches.size());
    if (_touch.isSingleFinger()) {
        drawUp(invertViewPoint(event.touches.front()->locationIn(this)));
    } else {
        deleteCurrentHandlingTool();
    }
    tellDrawnOver();
    View::touchesEnded(event);
}

void MDrawView::touchesCancelled(const ui::TouchEvent& event) {
    const auto alive = self();
    _touch.updateDrawStateTouches(TOUCH_PHASE_CANCELED, event.allTouches.size());
    const bool isDone = forgiving() && !_touch.isMoved;
    if (_touch.isSingleFinger() && !isDone) {
        drawUp(lastMovePoint());
    } else {
        deleteCurrentHandlingTool();
    }
    tellDrawnOver();
    View::touchesCancelled(event);
}

// Where a second finger or a cancel ends a creation. The stored point is a canvas point already; by
// itself the canvas deliberately converts it once more.
gfx::Point MDrawView::lastMovePoint() const {
    return forgiving() ? _touch.lastMouseMovePoint : invertViewPoint(_touch.lastMouseMovePoint);
}

bool MDrawView::isTapping(const ui::Touch& touch) const {
    const gfx::Point place = touch.locationIn(this);
    return isStillTapping(
        {.forgiving = forgiving(),
         .isMoved = _touch.isMoved,
         .hasSelection = isSelectionValid(),
         .isOnSelection = _touch.inHandleLastSeletedTools,
         .canvasDistance =
             QVPointDistance(_touch.lastMouseDownPoint, invertViewPoint(place)) * touchScale(),
         .viewDistance = QVPointDistance(_touch.downPlace, place)});
}

// What a finger draws or drags may lie under a part of the owner's screen.
void MDrawView::tellDrawnOver() {
    const bool isDragging = _touch.isMoved && _touch.inHandleLastSeletedTools;
    ToolRef live;
    if (_touch.isSingleFinger() && isBeingCreated()) {
        live = _handingTool;
    } else if (_touch.isSingleFinger() && isDragging) {
        live = _handingTools;
    }
    if (!live && !_isDrawingOver) return;
    _isDrawingOver = live != nullptr;
    const auto delegate = _drawViewdelegate.lock();
    if (!delegate) return;
    if (!live) return delegate->didDrawOver(std::nullopt);
    // Turned or not: as good as exact for what it is asked for, and the same effort at every move.
    const double reach = -live->lineWidth() / 2;
    delegate->didDrawOver(mViewTransform().apply(live->frame().inset(reach, reach)));
}

// ---- one finger, canvas points

// View points per canvas point for what keeps its size on the screen; 1 where canvas points stand
// for it.
double MDrawView::touchScale() const {
    return _picture.hasBasis() ? _zoom.shownScale() : 1;
}

void MDrawView::scaleForScreen(MDrawTool& tool) const {
    tool.setHandleViewScale(_zoom.contextScale() * _picture.fittingScale());
    tool.setViewScale(_picture.hasBasis() ? touchScale() : 0);
}

bool MDrawView::isBeingCreated() const {
    return _handingTool && _handingTool->isNewBuild();
}

// Whether a tool is being created that is recorded so.
bool MDrawView::isCreating(ToolRecorder recorder) const {
    return isBeingCreated() && _handingTool->toolClass().recorder() == recorder;
}

void MDrawView::drawDown(gfx::Point p) {
    if (isBeingCreated()) return;
    _touch.abortTouch = endTypingByTouch();
    if (_touch.abortTouch) return redisplay();
    _touch.isMoved = false;
    _touch.dragged = nullptr;
    _touch.lastMouseDownPoint = p;
    _touch.lastTakenPoint = p;
    _touch.lastMouseMovePoint = {};
    if (_handingTools) scaleForScreen(*_handingTools);
    const bool isOnSelection = _handingTools && _handingTools->testHitOnHandle(p);
    const ToolRef found = isOnSelection ? nullptr : testHitTestSelectTool(p);
    const ToolClass* toolClass = _newTools.toolClass;
    const TouchMeaning meaning = meaningOf(
        {.forgiving = forgiving(),
         .isOnSelection = isOnSelection,
         .isOnTool = found != nullptr,
         .hasSelection = isSelectionValid(),
         .hasClass = toolClass != nullptr,
         .beginsAtOnce = toolClass && toolClass->beginning() == ToolBeginning::TouchDown});
    _touch.LastSeletedTestSrcPoint = found;
    _touch.inHandleLastSeletedTools = meaning.dragsSelection;
    _touch.drawing = meaning.draws;
    if (forgiving() && (isOnSelection || found)) endWaitingDrawing();
    if (isOnSelection) {
        _handingTools->hitOnHandle(p);
    } else if (meaning.createsAtOnce) {
        clearSelection();
        creatMDrawToolInPoint(p);
        redisplay();
    }
}

bool MDrawView::endTypingByTouch() {
    const ui::FlagScope ending(_touch.endsTyping);
    return checkAndEndTextToolEdittingText();
}

void MDrawView::drawMoveFromPointToPoint(gfx::Point from, gfx::Point to) {
    _touch.lastMouseMovePoint = to;
    if (_touch.abortTouch) return;
    _touch.isMoved = true;
    if (_touch.drawing && !isBeingCreated()) {
        clearSelection();
        // The owner, told of it, may have stopped the drawing.
        if (_touch.drawing) creatMDrawToolInPoint(_touch.lastMouseDownPoint);
    }
    redisplay();
    if (_touch.drawing && isBeingCreated()) {
        _handingTool->drawMove(to);
        return;
    }
    if (!_touch.inHandleLastSeletedTools) {
        clearSelection();
        if (const ToolRef found = std::exchange(_touch.LastSeletedTestSrcPoint, nullptr)) {
            addToolToSelectedToolsPoint(found, _touch.lastMouseDownPoint);
            _touch.inHandleLastSeletedTools = true;
        }
    }
    if (!isSelectionValid()) return;
    _touch.dragged = _handingTools;
    _touch.lastTakenPoint = _handingTools->tryMovePointEndPoint(from, to);
}

void MDrawView::drawUp(gfx::Point p) {
    if (!_touch.abortTouch && !finishCreation(p)) {
        if (_touch.isMoved) {
            finishDrag();
        } else {
            finishTap(p);
        }
    }
    _touch.isMoved = false;
    redisplay();
}

bool MDrawView::finishCreation(gfx::Point p) {
    if (!_touch.drawing || !isBeingCreated()) return false;
    const ToolClass& kind = _handingTool->toolClass();
    if (!_touch.isMoved && kind.beginning() != ToolBeginning::TouchDown) return false;
    const bool isFreehand = kind.recorder() == ToolRecorder::Strokes;
    _handingTool->drawUp(p);
    // No longer under way when the owner is told of the step: it may ask for the picture then.
    const ToolRef tool = std::exchange(_handingTool, nullptr);
    if (!tool->isDrawVaild()) {
        discard(tool);
        endFreehand();
    } else if (kind.recorder() != ToolRecorder::Touch) {
        // Recorded when the text has been typed, and when the drawing has faded in.
        clearSelection();
    } else {
        _undoManager->addToolSuccess(tool);
        tool->setIsNewBuild(false);
    }
    if (isFreehand) _drawFreeLineHelper->drawPause();
    // Every further stroke finds the owner told already.
    if (_drawFreeLineHelper->firstFreelinPart() && hasWaitingDrawing()) tellHistory();
    return true;
}

// Off the canvas without a record.
void MDrawView::discard(const ToolRef& tool) {
    const ToolRef kept = tool;
    _undoManager->removeToolFromAllSystem(kept);
    kept->setIsNewBuild(false);
}

void MDrawView::stopDrawing() {
    // A text that nobody has typed yet is nothing.
    if (isCreating(ToolRecorder::Typing)) {
        deleteCurrentHandlingTool();
    } else {
        finishCreation(_touch.lastMouseMovePoint);
    }
    _touch.drawing = false;
}

// What is being drawn is finished as it is by now, with its step, and so is a drawing that waits
// for more strokes. A text that nobody has typed yet shows nothing and may go on.
void MDrawView::endCreation() {
    if (isBeingCreated() && !isCreating(ToolRecorder::Typing)) {
        stopDrawing();
        // The finger that is still down has done its work.
        _touch.abortTouch = true;
    }
    endFreehand();
}

void MDrawView::finishDrag() {
    _touch.dragged = nullptr;
    if (!_handingTools) return;
    const std::shared_ptr<MDrawMutableSelect> selection = _handingTools;
    selection->stopMoveHandle();
    if (selection->isDrawVaild()) {
        _undoManager->addToolSuccess(selection);
    } else {
        _undoManager->removeTool(selection);
    }
}

void MDrawView::finishTap(gfx::Point p) {
    if (forgiving() && _handingTools) _handingTools->releaseHandles();
    const ToolRef tool = testHitTestSelectTool(p);
    if (!tool && makesDot()) {
        makeDot(p);
    } else if (!tool) {
        clearSelection();
    } else if (_handingTools && _handingTools->testHitOnHandle(p) &&
               _handingTools->containTool(tool)) {
        if (_taps.isSecondTap(tool, ui::Environment::current().wallClock())) {
            editText(std::static_pointer_cast<MDrawText>(tool));
        } else {
            removeToolFromSelectedTools(tool);
            _taps.forget();
        }
    } else {
        addToolToSelectedToolsPoint(tool, p);
    }
}

// ---- creation

void MDrawView::creatMDrawToolInPoint(gfx::Point p) {
    if (!_newTools.toolClass) return;
    if (forgiving()) endDrawingOfOtherPen();
    const ToolRef tool = makeTool(p);
    _newTools.prepare(*tool);
    _handingTool = tool;
    _undoManager->addTool(tool);
    if (std::ranges::find(_createdTools, tool) == _createdTools.end()) {
        _createdTools.push_back(tool);
    }
    _drawn.markListChanged();
    // The ink begins where the finger came down.
    if (forgiving() && isCreating(ToolRecorder::Strokes)) tool->drawMove(p);
}

ToolRef MDrawView::makeTool(gfx::Point p) {
    const ToolClass& kind = *_newTools.toolClass;
    if (kind.recorder() != ToolRecorder::Strokes) {
        const ToolRef tool = kind.makeWithStartPoint(p);
        adoptText(tool);
        return tool;
    }
    const std::shared_ptr<MDrawFreeline> drawing = _drawFreeLineHelper->freelineTool(kind);
    // Strokes that join a drawing leave its box alone.
    if (_drawFreeLineHelper->firstFreelinPart()) {
        drawing->setStartPoint(p);
        drawing->setEndPoint(p);
    }
    return drawing;
}

void MDrawView::deleteCurrentHandlingTool() {
    if (!isBeingCreated()) return;
    const ToolRef tool = std::exchange(_handingTool, nullptr);
    // A text that is being typed takes its field along.
    if (_curEdittingTextTool == tool) checkAndEndTextToolEdittingText();
    if (isOnCanvas(tool)) discard(tool);
    tool->setIsNewBuild(false);
    endFreehand();
    redisplay();
}

// Patches lie below everything else, whenever they were made.
ToolRef MDrawView::testHitTestSelectTool(gfx::Point p) const {
    ToolRef patch;
    for (auto tool = _tools->rbegin(); tool != _tools->rend(); ++tool) {
        if ((*tool)->isNewBuild()) continue;
        (*tool)->setViewScale(_picture.hasBasis() ? touchScale() : 0);
        if (!(*tool)->hitTest(p)) continue;
        if ((*tool)->toolClass().layer() == ToolLayer::Items) return *tool;
        if (!patch) patch = *tool;
    }
    return patch;
}

// ---- two fingers

void MDrawView::handleRotationGesture(ui::GestureState state, double rotation) {
    const auto alive = self();
    const bool isEnding = state == ui::GestureState::Ended ||
                          state == ui::GestureState::Cancelled || state == ui::GestureState::Failed;
    // The first of turn and pinch that is recognised keeps the fingers.
    const bool isOver = (state != ui::GestureState::Began && _rotation.isOver) ||
                        (_zoom.isPinching() && !_rotation.holdsFingers);
    const bool mayTurn = !isOver && std::isfinite(rotation) && enableGesture() &&
                         isSelectionValid() && _handingTools->isSupportGestureRotate();
    _rotation.isOver = isOver && !isEnding;
    _rotation.holdsFingers = mayTurn && !isEnding;
    if (!mayTurn) return;
    if (forgiving() && _rotation.tools != _handingTools) _handingTools->beginRotation();
    if (isEnding) {
        endRotation(rotation);
    } else if (state == ui::GestureState::Changed) {
        _rotation.tools = _handingTools;
        _rotation.angle = rotation;
        _handingTools->rotateChangedWithAngle(rotation);
    }
    redisplay();
}

void MDrawView::endRotation(double rotation) {
    _rotation.tools = nullptr;
    _handingTools->rotateEndedWithAngle(rotation);
    _undoManager->addToolSuccess(_handingTools);
}

}  // namespace kalim
