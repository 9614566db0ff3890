#include <utility>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

void MDrawView::selectTools(const ToolList& tools) {
    const auto alive = self();
    // Letting go may end a rotation as a step, and a step may take tools off the canvas.
    dropSelection();
    const auto group = makeSelection();
    for (const ToolRef& tool : tools) {
        const bool isFree = isOnCanvas(tool) && !tool->isNewBuild() && isPickable(*tool);
        if (!isFree || group->containTool(tool)) continue;
        group->addSubTool(tool);
    }
    if (group->isValidTools()) {
        group->setSelected(true);
        _handingTools = group;
    }
    notifySelection();
    redisplay();
}

bool MDrawView::isPickable(const MDrawTool& tool) const {
    return forgiving() || tool.toolClass().picking() == ToolPicking::Always;
}

std::shared_ptr<MDrawMutableSelect> MDrawView::makeSelection() const {
    const auto group = MDrawMutableSelect::make();
    group->setRules(_newTools.rules);
    return group;
}

void MDrawView::selectNone() {
    const auto alive = self();
    clearSelection();
}

void MDrawView::addToolToSelectedToolsPoint(const ToolRef& tool, gfx::Point p) {
    _taps.remember(tool, ui::Environment::current().wallClock());
    if (_drawFreeLineHelper->isFreelineDrawing()) return;
    if (_handingTools && _handingTools->subTools().size() == 1 &&
        _handingTools->firstSelectedTool() != tool) {
        removeToolFromSelectedTools(_handingTools->firstSelectedTool());
    }
    // The owner, told of it, may have taken the tool off the canvas.
    if (!isOnCanvas(tool)) return;
    if (!_handingTools) _handingTools = makeSelection();
    if (_handingTools->containTool(tool)) {
        removeToolFromSelectedTools(tool);
        return;
    }
    _handingTools->addSubTool(tool);
    tool->hitOnHandle(p);
    tool->setSelected(true);
    // Only a finger that has moved has hold of it.
    if (forgiving() && !_touch.isMoved) tool->setMoveDirection(MoveDirection::None);
    notifySelection();
}

void MDrawView::removeToolFromSelectedTools(const ToolRef& tool) {
    if (!_handingTools || !_handingTools->containTool(tool)) return;
    const ToolRef kept = tool;  // The caller's reference may be an element of the group's list.
    endStepUnderWay();
    if (!_handingTools || !_handingTools->containTool(kept)) return;
    // What is let go stays as it was drawn.
    if (forgiving()) kept->setMoveDirection(MoveDirection::None);
    _handingTools->removeSubTool(kept);
    kept->setSelected(false);
    kept->finalize();
    if (!_handingTools->isValidTools()) _handingTools = nullptr;
    notifySelection();
}

void MDrawView::clearSelection() {
    if (!_handingTools) return;
    dropSelection();
    notifySelection();
    redisplay();
}

void MDrawView::endStepUnderWay() {
    endDragUnderWay();
    endRotationUnderWay();
}

// Whatever breaks a drag off, it has its record; the finger has nothing in hand from then on.
void MDrawView::endDragUnderWay() {
    if (!forgiving() || !_handingTools || _touch.dragged != _handingTools) return;
    _touch.abortTouch = true;
    finishDrag();
}

// Ends as a step of its own what the fingers may not go on turning.
void MDrawView::endRotationUnderWay() {
    if (!_handingTools || _rotation.tools != _handingTools) return;
    _rotation.isOver = true;
    endRotation(_rotation.angle);
}

// Members that have left the canvas leave the selection.
void MDrawView::dropAbsentFromSelection() {
    if (!_handingTools) return;
    ToolList absent;
    for (const ToolRef& tool : _handingTools->subTools()) {
        if (!isOnCanvas(tool)) absent.push_back(tool);
    }
    if (!absent.empty()) _touch.dragged = nullptr;
    if (!absent.empty() && absent.size() == _handingTools->subTools().size()) {
        // Nothing of it is left to be turned.
        if (_rotation.tools == _handingTools) _rotation.isOver = true;
        _rotation.tools = nullptr;
        clearSelection();
        return;
    }
    for (const ToolRef& tool : absent)
        removeToolFromSelectedTools(tool);
}

// Lets go without a word.
void MDrawView::dropSelection() {
    endStepUnderWay();
    const auto dropped = std::exchange(_handingTools, nullptr);
    if (!dropped) return;
    if (forgiving()) dropped->releaseHandles();
    dropped->setSelected(false);
    dropped->finalize();
}

void MDrawView::notifySelection() {
    const auto alive = self();
    const auto delegate = _drawViewdelegate.lock();
    if (!delegate) return;
    delegate->seletedToolsStateChanged(isSelectionValid());
    // Asked for only now: the first message may have changed the selection.
    const ToolRef first = _handingTools ? _handingTools->firstSelectedTool() : nullptr;
    delegate->currentSelectedToolsPropertyChangedColorLineWidth(getToolTypeForClass(first.get()),
                                                                first ? first->color() : nullptr,
                                                                first ? first->lineWidth() : 0.0);
}

void MDrawView::recordSelectionChange() {
    const auto alive = self();
    _undoManager->addToolSuccess(_handingTools);
    redisplay();
}

}  // namespace kalim
