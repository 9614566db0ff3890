#include <cmath>
#include <utility>

#include "kalimkit/canvas/model/QVGeometry.h"
#include "kalimkit/canvas/view/MDrawView.h"

namespace kalim {

namespace {

// While something else is selected, a finger that has moved less than this is still tapping.
constexpr double tapSlop = 3.0;

}  // namespace

// ---- touch messages

void MDrawView::touchesBegan(const ui::TouchEvent& event) {
    const auto alive = self();
    if (const auto delegate = _drawViewdelegate.lock()) delegate->didDrawStarted();
    updateDrawStateTouches(TOUCH_PHASE_BEGAN, event.allTouches.size());
    if (isSingleFinger()) {
        drawDown(invertViewPoint(event.touches.front()->locationIn(this)));
    } else if (isSelectionValid()) {
        deleteCurrentHandlingTool();
    } else if (isBeingCreated()) {
        // The stored point is a canvas point already; it is deliberately converted once more.
        drawUp(invertViewPoint(_lastMouseMovePoint));
    }
    View::touchesBegan(event);
}

void MDrawView::touchesMoved(const ui::TouchEvent& event) {
    const auto alive = self();
    updateDrawStateTouches(TOUCH_PHASE_MOVED, event.allTouches.size());
    const ui::Touch& touch = *event.touches.front();
    const gfx::Point from = invertViewPoint(touch.previousLocationIn(this));
    const gfx::Point to = invertViewPoint(touch.locationIn(this));
    const bool isStillTapping = isSelectionValid() && !_inHandleLastSeletedTools &&
                                QVPointDistance(_lastMouseDownPoint, to) < tapSlop;
    if (!isSingleFinger()) {
        deleteCurrentHandlingTool();
    } else if (!isStillTapping) {
        drawMoveFromPointToPoint(from, to);
    }
    View::touchesMoved(event);
}

void MDrawView::touchesEnded(const ui::TouchEvent& event) {
    const auto alive = self();
    updateDrawStateTouches(TOUCH_PHASE_ENDED, event.allTouches.size());
    if (isSingleFinger()) {
        drawUp(invertViewPoint(event.touches.front()->locationIn(this)));
    } else {
        deleteCurrentHandlingTool();
    }
    View::touchesEnded(event);
}

void MDrawView::touchesCancelled(const ui::TouchEvent& event) {
    const auto alive = self();
    updateDrawStateTouches(TOUCH_PHASE_CANCELED, event.allTouches.size());
    if (isSingleFinger()) {
        // Converted once more, as when a second finger ends a creation.
        drawUp(invertViewPoint(_lastMouseMovePoint));
    } else {
        deleteCurrentHandlingTool();
    }
    View::touchesCancelled(event);
}

void MDrawView::updateDrawStateTouches(std::int32_t phase, std::size_t touchCount) {
    const bool isKnownPhase = phase >= TOUCH_PHASE_BEGAN && phase <= TOUCH_PHASE_CANCELED;
    if (touchCount == 0 || touchCount > 2 || !isKnownPhase) {
        _drawState = 0;
        return;
    }
    const unsigned mask = touchCount == 1 ? 15U : 12U;
    _drawState = phase == TOUCH_PHASE_BEGAN ? mask : _drawState & mask;
}

// ---- one finger, canvas points

bool MDrawView::isBeingCreated() const {
    return _handingTool && _handingTool->isNewBuild();
}

void MDrawView::drawDown(gfx::Point p) {
    if (isBeingCreated()) return;
    _isMoved = false;
    _drawing = false;
    _lastMouseDownPoint = p;
    _lastMouseMovePoint = {};
    LastSeletedTestSrcPoint = nullptr;
    _inHandleLastSeletedTools = _handingTools && _handingTools->testHitOnHandle(p);
    if (_inHandleLastSeletedTools) {
        _handingTools->hitOnHandle(p);
        return;
    }
    LastSeletedTestSrcPoint = testHitTestSelectTool(p);
    _drawing = !LastSeletedTestSrcPoint;
}

void MDrawView::drawMoveFromPointToPoint(gfx::Point from, gfx::Point to) {
    _lastMouseMovePoint = to;
    _isMoved = true;
    if (_drawing && !isBeingCreated()) {
        clearSelection();
        // The owner, told of it, may have stopped the drawing.
        if (_drawing) creatMDrawToolInPoint(_lastMouseDownPoint);
    }
    setNeedsDisplay();
    if (_drawing && isBeingCreated()) {
        _handingTool->drawMove(to);
        return;
    }
    if (!_inHandleLastSeletedTools) {
        clearSelection();
        if (const ToolRef found = std::exchange(LastSeletedTestSrcPoint, nullptr)) {
            addToolToSelectedToolsPoint(found, _lastMouseDownPoint);
            _inHandleLastSeletedTools = true;
        }
    }
    if (isSelectionValid()) _handingTools->tryMovePointEndPoint(from, to);
}

void MDrawView::drawUp(gfx::Point p) {
    if (!finishCreation(p)) {
        if (_isMoved) {
            finishDrag();
        } else {
            finishTap(p);
        }
    }
    _isMoved = false;
    setNeedsDisplay();
}

bool MDrawView::finishCreation(gfx::Point p) {
    if (!_drawing || !_isMoved || !isBeingCreated()) return false;
    const ToolRef tool = _handingTool;
    tool->drawUp(p);
    if (tool->isDrawVaild()) {
        _undoManager->addToolSuccess(tool);
    } else {
        _undoManager->removeToolFromAllSystem(tool);
    }
    tool->setIsNewBuild(false);
    _handingTool = nullptr;
    return true;
}

void MDrawView::stopDrawing() {
    finishCreation(_lastMouseMovePoint);
    _drawing = false;
}

void MDrawView::finishDrag() {
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
    const ToolRef tool = testHitTestSelectTool(p);
    if (!tool) {
        clearSelection();
    } else if (_handingTools && _handingTools->testHitOnHandle(p) &&
               _handingTools->containTool(tool)) {
        removeToolFromSelectedTools(tool);
    } else {
        addToolToSelectedToolsPoint(tool, p);
    }
}

// ---- creation

void MDrawView::creatMDrawToolInPoint(gfx::Point p) {
    if (!_drawToolClass) return;
    const ToolRef tool = _drawToolClass->makeWithStartPoint(p);
    prepareNewTool(*tool);
    _handingTool = tool;
    _undoManager->addTool(tool);
}

void MDrawView::prepareNewTool(MDrawTool& tool) const {
    tool.setSelected(false);
    tool.setColor(_color);
    tool.setDrawType(_drawType);
    tool.setLineWidth(_lineWidth);
    tool.setIsNewBuild(true);
    applyMeasuring(tool);
    tool.finalize();
}

void MDrawView::deleteCurrentHandlingTool() {
    if (!isBeingCreated()) return;
    const ToolRef tool = std::exchange(_handingTool, nullptr);
    _undoManager->removeToolFromAllSystem(tool);
    tool->setIsNewBuild(false);
    setNeedsDisplay();
}

ToolRef MDrawView::testHitTestSelectTool(gfx::Point p) const {
    for (auto tool = _tools->rbegin(); tool != _tools->rend(); ++tool) {
        if (!(*tool)->isNewBuild() && (*tool)->hitTest(p)) return *tool;
    }
    return nullptr;
}

// ---- two fingers

void MDrawView::handleRotationGesture(ui::GestureState state, double rotation) {
    const auto alive = self();
    const bool isEnding = state == ui::GestureState::Ended ||
                          state == ui::GestureState::Cancelled || state == ui::GestureState::Failed;
    const bool isOver = state == ui::GestureState::Began ? false : _isRotationOver;
    _isRotationOver = isOver && !isEnding;
    if (isOver || !std::isfinite(rotation) || !_enableGesture || !isSelectionValid() ||
        !_handingTools->isSupportGestureRotate()) {
        return;
    }
    if (isEnding) {
        endRotation(rotation);
    } else if (state == ui::GestureState::Changed) {
        _rotatedTools = _handingTools;
        _rotation = rotation;
        _handingTools->rotateChangedWithAngle(rotation);
    }
    setNeedsDisplay();
}

void MDrawView::endRotation(double rotation) {
    _rotatedTools = nullptr;
    _handingTools->rotateEndedWithAngle(rotation);
    _undoManager->addToolSuccess(_handingTools);
}

}  // namespace kalim
