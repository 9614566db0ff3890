#include "kalimkit/canvas/MDrawView.h"

namespace kalim {

// A drawing that still waits for more strokes stays as a step of its own, or nothing could undo it.
void MDrawView::endFreehand() {
    const ToolRef waiting = _drawFreeLineHelper->freeline();
    _drawFreeLineHelper->reset();
    _undoManager->addToolSuccess(waiting);
}

// A drawing under construction that holds finished strokes. By itself the canvas does not count it
// before it has faded in.
bool MDrawView::hasWaitingDrawing() const {
    const std::shared_ptr<MDrawFreeline>& drawing = _drawFreeLineHelper->freeline();
    return forgiving() && drawing &&
           (drawing != _handingTool || !_drawFreeLineHelper->firstFreelinPart());
}

// What comes next is a step of its own. A stroke under way goes on.
void MDrawView::endWaitingDrawing() {
    if (hasWaitingDrawing() && _drawFreeLineHelper->freeline() != _handingTool) endFreehand();
}

// Strokes join a drawing of their own colour and width alone.
void MDrawView::endDrawingOfOtherPen() {
    const std::shared_ptr<MDrawFreeline>& drawing = _drawFreeLineHelper->freeline();
    const bool isJoined = drawing && _newTools.toolClass == &drawing->toolClass() &&
                          gfx::equalColors(drawing->color(), _newTools.color) &&
                          drawing->lineWidth() == _newTools.lineWidth;
    if (!isJoined) endWaitingDrawing();
}

void MDrawView::tellHistory() {
    if (const auto delegate = _drawViewdelegate.lock()) {
        delegate->canUndoStateChangedCanRedo(canUndo(), canRedo());
    }
}

// A tap that picks nothing and lets nothing go is ink, too.
bool MDrawView::makesDot() const {
    return forgiving() && _touch.drawing && !_handingTools && _newTools.toolClass &&
           _newTools.toolClass->recorder() == ToolRecorder::Strokes;
}

void MDrawView::makeDot(gfx::Point p) {
    creatMDrawToolInPoint(_touch.lastMouseDownPoint);
    _touch.isMoved = true;
    finishCreation(p);
}

// ---- messages

void MDrawView::drawFreelineComplate(const std::shared_ptr<MDrawFreeline>& freeline) {
    const auto alive = self();
    _undoManager->addToolSuccess(freeline);
    redisplay();
}

void MDrawView::drawFreelinePropertyChanged(const std::shared_ptr<MDrawFreeline>&) {
    redisplay();
}

}  // namespace kalim
