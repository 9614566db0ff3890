#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/model/QVGeometry.h"
#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

namespace {

// While something else is selected, a finger that has moved less than this is still tapping.
constexpr double tapSlop = 3.0;

}  // namespace

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
        drawDown(invertViewPoint(event.touches.front()->locationIn(this)));
    } else if (isSelectionValid() || drawsClass(MDrawText::Class())) {
        deleteCurrentHandlingTool();
    } else if (isBeingCreated()) {
        // The stored point is a canvas point already; it is deliberately converted once more.
        drawUp(invertViewPoint(_touch.lastMouseMovePoint));
    }
    View::touchesBegan(event);
}

void MDrawView::touchesMoved(const ui::TouchEvent& event) {
    const auto alive = self();
    _touch.updateDrawStateTouches(TOUCH_PHASE_MOVED, event.allTouches.size());
    const ui::Touch& touch = *event.touches.front();
    const gfx::Point from = invertViewPoint(touch.previousLocationIn(this));
    const gfx::Point to = invertViewPoint(touch.locationIn(this));
    const bool isStillTapping = isSelectionValid() && !_touch.inHandleLastSeletedTools &&
                                QVPointDistance(_touch.lastMouseDownPoint, to) < tapSlop;
    if (!_touch.isSingleFinger()) {
        deleteCurrentHandlingTool();
    } else if (!isStillTapping) {
        drawMoveFromPointToPoint(from, to);
    }
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
    View::touchesEnded(event);
}

void MDrawView::touchesCancelled(const ui::TouchEvent& event) {
    const auto alive = self();
    _touch.updateDrawStateTouches(TOUCH_PHASE_CANCELED, event.allTouches.size());
    if (_touch.isSingleFinger()) {
        // Converted once more, as when a second finger ends a creation.
        drawUp(invertViewPoint(_touch.lastMouseMovePoint));
    } else {
        deleteCurrentHandlingTool();
    }
    View::touchesCancelled(event);
}

// ---- one finger, canvas points

bool MDrawView::isBeingCreated() const {
    return _handingTool && _handingTool->isNewBuild();
}

// Whether the tool being created is of a class.
bool MDrawView::drawsClass(const ToolClass& toolClass) const {
    return isBeingCreated() && _handingTool->toolClass().isKindOf(toolClass);
}

void MDrawView::drawDown(gfx::Point p) {
    if (isBeingCreated()) return;
    _touch.abortTouch = false;
    if (checkAndEndTextToolEdittingText()) {
        _touch.abortTouch = true;
        redisplay();
        return;
    }
    _touch.isMoved = false;
    _touch.drawing = false;
    _touch.lastMouseDownPoint = p;
    _touch.lastMouseMovePoint = {};
    _touch.LastSeletedTestSrcPoint = nullptr;
    _touch.inHandleLastSeletedTools = _handingTools && _handingTools->testHitOnHandle(p);
    if (_touch.inHandleLastSeletedTools) {
        _handingTools->hitOnHandle(p);
        return;
    }
    _touch.LastSeletedTestSrcPoint = testHitTestSelectTool(p);
    _touch.drawing = !_touch.LastSeletedTestSrcPoint;
    const bool isForText = _newTools.toolClass && _newTools.toolClass->isKindOf(MDrawText::Class());
    if (_touch.drawing && !isSelectionValid() && isForText) {
        clearSelection();
        creatMDrawToolInPoint(p);
        redisplay();
    }
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
    if (isSelectionValid()) _handingTools->tryMovePointEndPoint(from, to);
}

void MDrawView::drawUp(gfx::Point p) {
    if (_touch.abortTouch) return redisplay();
    if (!finishCreation(p)) {
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
    const bool isText = drawsClass(MDrawText::Class());
    if (!_touch.drawing || !isBeingCreated() || !(_touch.isMoved || isText)) return false;
    const bool isFreehand = drawsClass(MDrawFreeline::Class());
    const ToolRef tool = _handingTool;
    tool->drawUp(p);
    if (!tool->isDrawVaild()) {
        discard(tool);
        endFreehand();
    } else if (isText || isFreehand) {
        // Recorded when the text has been typed, and when the drawing has faded in.
        clearSelection();
    } else {
        _undoManager->addToolSuccess(tool);
        tool->setIsNewBuild(false);
    }
    if (isFreehand) _drawFreeLineHelper->drawPause();
    _handingTool = nullptr;
    return true;
}

// Off the canvas without a record.
void MDrawView::discard(const ToolRef& tool) {
    const ToolRef kept = tool;
    _undoManager->removeToolFromAllSystem(kept);
    kept->setIsNewBuild(false);
}

// A drawing that still waits for more strokes stays as a step of its own, or nothing could undo it.
void MDrawView::endFreehand() {
    const ToolRef waiting = _drawFreeLineHelper->freeline();
    _drawFreeLineHelper->reset();
    _undoManager->addToolSuccess(waiting);
}

void MDrawView::stopDrawing() {
    // A text that nobody has typed yet is nothing.
    if (drawsClass(MDrawText::Class())) {
        deleteCurrentHandlingTool();
    } else {
        finishCreation(_touch.lastMouseMovePoint);
    }
    _touch.drawing = false;
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
    const ToolRef tool = makeTool(p);
    _newTools.prepare(*tool);
    _handingTool = tool;
    _undoManager->addTool(tool);
    if (std::ranges::find(_createdTools, tool) == _createdTools.end()) {
        _createdTools.push_back(tool);
    }
    _drawn.markListChanged();
}

ToolRef MDrawView::makeTool(gfx::Point p) {
    if (_newTools.toolClass->isKindOf(MDrawText::Class())) {
        const auto text = MDrawText::initWithViewStartPoint(self(), p);
        text->setDelegate(self());
        return text;
    }
    if (_newTools.toolClass != &MDrawFreeline::Class())
        return _newTools.toolClass->makeWithStartPoint(p);
    const std::shared_ptr<MDrawFreeline> drawing = _drawFreeLineHelper->freelineTool();
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
    const bool isOver = state == ui::GestureState::Began ? false : _rotation.isOver;
    _rotation.isOver = isOver && !isEnding;
    if (isOver || !std::isfinite(rotation) || !enableGesture() || !isSelectionValid() ||
        !_handingTools->isSupportGestureRotate()) {
        return;
    }
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
