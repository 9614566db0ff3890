#include <utility>

#include "kalimkit/canvas/CanvasArrangement.h"
#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasFreehand.h"
#include "kalimkit/canvas/CanvasGrip.h"
#include "kalimkit/canvas/CanvasHistory.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/canvas/DrawnSpan.h"

// What the finger does to tools that there are, and what keys make of it.

namespace kalim {

// ---- dragging and tapping

// Whatever breaks a drag off, it has its record; the finger has nothing in hand from then on.
void CanvasFinger::endDrag() {
    const auto& group = _canvas.selection.group();
    if (!_canvas.tools.forgiving() || !group || _dragged != group) return;
    abort();
    finishDrag();
}

void CanvasFinger::finishDrag() {
    _dragged = nullptr;
    const std::shared_ptr<MDrawMutableSelect> selection = _canvas.selection.group();
    if (!selection) return;
    selection->stopMoveHandle();
    if (selection->isDrawVaild()) {
        _canvas.tools.record(selection);
    } else {
        _canvas.tools.remove(selection);
    }
}

// What a drag under way began with is what there is again.
bool CanvasFinger::cancelGesture() {
    if (_state == FingerState::Drawing && isCreating()) {
        // Ink may have been there before this stroke: it is not lost, but undone.
        if (isCreating(ToolRecorder::Strokes)) {
            endCreation();
            _canvas.history.undo();
        } else {
            deleteCreated();
        }
    } else if (_state == FingerState::Dragging && _dragged && _canvas.grip.holds()) {
        _canvas.grip.putBack();
        std::exchange(_dragged, nullptr)->releaseHandles();
    } else if (_state != FingerState::Dragging || !_meaning.spansMarquee) {
        return false;
    }
    enter(FingerState::Aborted);
    tellDrawnOver();
    _canvas.home.redisplay();
    return true;
}

// ---- several at once

void CanvasFinger::spanMarquee(gfx::Point to) {
    enter(FingerState::Dragging);
    _canvas.screen.showMarquee(gfx::Rect::spanning(_downPoint, to));
}

// With shift what is selected already stays so.
void CanvasFinger::finishMarquee(gfx::Point p) {
    _canvas.screen.showMarquee(std::nullopt);
    ToolList tools;
    if (_keys.shift && _canvas.selection.isValid()) tools = _canvas.selection.group()->subTools();
    _canvas.arrangement.selectWithin(gfx::Rect::spanning(_downPoint, p));
    if (tools.empty()) return;
    if (_canvas.selection.isValid()) _canvas.selection.group()->addSubToolToArray(tools);
    _canvas.selection.select(tools);
}

void CanvasFinger::pickMemberAt(gfx::Point p) {
    const ToolRef tool = _canvas.tools.topmostAt(p);
    const bool isOfGroup = tool && !tool->groups().empty() && _canvas.selection.contains(tool);
    if (!isOfGroup || _canvas.selection.group()->subTools().size() == 1) return;
    // The touch-up of the second tap is still to come.
    abort();
    _canvas.selection.select({tool});
}

// ---- what keys make of a drawing

void CanvasFinger::drawTo(gfx::Point to) {
    const bool isSpanned = _tool->toolClass().span() != ToolSpan::Free;
    if (_keys.space && isSpanned && _drawnPoint) _origin += to - *_drawnPoint;
    _drawnPoint = to;
    _tool->drawMove(drawnEnd(to));
}

// Also has the tool begin where the keys say.
gfx::Point CanvasFinger::drawnEnd(gfx::Point p) {
    if (_keys.shift || _keys.alt || _keys.space) _isHeldToKeys = true;
    const ToolSpan kind = _tool->toolClass().span();
    // What stands in for a stroke begins where that did.
    if (!_isHeldToKeys || kind == ToolSpan::Free || _stroke) return shapePoint(p);
    const DrawnSpan span = drawnSpan(kind, _origin, p, _keys);
    _tool->setStartPoint(span.start);
    return span.end;
}

// ---- tapping

void CanvasFinger::finishTap(gfx::Point p) {
    CanvasSelection& selection = _canvas.selection;
    if (_canvas.tools.forgiving() && selection.group()) selection.group()->releaseHandles();
    const ToolRef tool = _canvas.tools.topmostAt(p);
    if (!tool && makesDot()) {
        makeDot(p);
    } else if (!tool && startsByTap()) {
        startByTap();
    } else if (_canvas.tools.forgiving() && (_keys.shift || _keys.control)) {
        if (tool) selection.toggle(tool, !_keys.alt);
    } else if (tool && _canvas.tools.forgiving() && _keys.alt) {
        selection.select({tool});
    } else if (!tool) {
        selection.clear();
    } else if (selection.group() && selection.group()->testHitOnHandle(p) &&
               selection.contains(tool)) {
        tapSelected(tool);
    } else {
        selection.pick(tool, p);
    }
}

void CanvasFinger::tapSelected(const ToolRef& tool) {
    CanvasSelection& selection = _canvas.selection;
    if (selection.isSecondTap(tool)) {
        _canvas.typing.edit(tool);
    } else if (_canvas.tools.pen().rules.fineHandles) {
        // A pointer lets go beside it; of several it means what it is on.
        const ToolList meant = selection.withGroups({tool});
        if (meant.size() < selection.group()->subTools().size()) selection.select(meant);
    } else {
        selection.remove(tool);
        selection.forgetTap();
    }
}

}  // namespace kalim
