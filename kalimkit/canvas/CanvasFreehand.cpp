#include "kalimkit/canvas/CanvasFreehand.h"

#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasTools.h"

namespace kalim {

CanvasFreehand::CanvasFreehand(const Canvas& canvas)
    : _canvas(canvas), _helper(MDrawFreeLineHelper::init()) {}

void CanvasFreehand::listen() {
    _helper->setDelegate(_canvas.home.held(*this));
}

// ---- a stroke

std::shared_ptr<MDrawFreeline> CanvasFreehand::drawingAt(gfx::Point p, const ToolClass& kind) {
    const std::shared_ptr<MDrawFreeline> drawing = _helper->freelineTool(kind);
    // Strokes that join a drawing leave its box alone.
    if (_helper->firstFreelinPart()) {
        drawing->setStartPoint(p);
        drawing->setEndPoint(p);
    }
    return drawing;
}

bool CanvasFreehand::isFirstStrokeWaiting() const {
    return _helper->firstFreelinPart() && isWaiting();
}

// ---- the drawing

// By itself the canvas does not count a drawing before it has faded in. One that is just recorded
// waits no more.
bool CanvasFreehand::isWaiting() const {
    const std::shared_ptr<MDrawFreeline>& drawing = _helper->freeline();
    return _canvas.tools.forgiving() && drawing && drawing->isNewBuild() &&
           (drawing != _canvas.finger.tool() || !_helper->firstFreelinPart());
}

// Without a record nothing could undo it.
void CanvasFreehand::end() {
    const ToolRef waiting = _helper->freeline();
    _helper->reset();
    _canvas.tools.record(waiting);
}

// What comes next is a step of its own.
void CanvasFreehand::endWaiting() {
    if (isWaiting() && _helper->freeline() != _canvas.finger.tool()) end();
}

// Strokes join a drawing of their own colour and width alone.
void CanvasFreehand::endOfOtherPen() {
    const std::shared_ptr<MDrawFreeline>& drawing = _helper->freeline();
    const NewTools& pen = _canvas.tools.pen();
    const bool isJoined = drawing && pen.toolClass == &drawing->toolClass() &&
                          gfx::equalColors(drawing->color(), pen.color) &&
                          drawing->lineWidth() == pen.lineWidth;
    if (!isJoined) endWaiting();
}

// ---- messages

void CanvasFreehand::drawFreelineComplate(const std::shared_ptr<MDrawFreeline>& freeline) {
    _canvas.tools.record(freeline);
    _canvas.home.redisplay();
}

void CanvasFreehand::drawFreelinePropertyChanged(const std::shared_ptr<MDrawFreeline>&) {
    _canvas.home.redisplay();
}

}  // namespace kalim
