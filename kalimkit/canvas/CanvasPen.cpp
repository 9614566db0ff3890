#include "kalimkit/canvas/CanvasPen.h"

#include <cmath>
#include <utility>

#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasFreehand.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasJournal.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasTools.h"
#include "kalimkit/canvas/CanvasTyping.h"

namespace kalim {

void CanvasPen::setForgiving(bool forgiving) {
    if (forgiving == _canvas.tools.forgiving()) return;
    _canvas.tools.setForgiving(forgiving);
    if (const auto& group = _canvas.selection.group()) group->setRules(_canvas.tools.pen().rules);
    _canvas.screen.invalidate();
}

// ---- the class and the style

void CanvasPen::choose(const ToolClass* toolClass, std::uint64_t drawType) {
    NewTools& pen = _canvas.tools.pen();
    if (toolClass != pen.toolClass) _canvas.freehand.endWaiting();
    pen.toolClass = toolClass;
    if (!pen.toolClass) _canvas.finger.stopDrawing();
    const ToolRef& created = _canvas.finger.tool();
    const ToolClass* creating = created ? &created->toolClass() : nullptr;
    if (pen.toolClass != creating) pen.drawType = drawType;
}

void CanvasPen::setDrawType(std::uint64_t drawType, const ToolClass* toolClass) {
    _canvas.tools.pen().drawType = drawType;
    CanvasSelection& selection = _canvas.selection;
    if (!toolClass || !selection.isValid() || selection.group()->drawType() == drawType) return;
    selection.group()->setDrawTypeForType(drawType, toolClass);
    selection.recordChange();
}

// ---- the colour and the width

void CanvasPen::setColor(gfx::ColorRef color) {
    if (!color) return;
    NewTools& pen = _canvas.tools.pen();
    if (!gfx::equalColors(color, pen.color)) _canvas.freehand.endWaiting();
    pen.color = std::move(color);
    const auto text = _canvas.typing.restyledText();
    if (text && !gfx::equalColors(text->color(), pen.color)) {
        text->takeColor(pen.color);
        return _canvas.home.redisplay();
    }
    CanvasSelection& selection = _canvas.selection;
    if (!selection.isValid() || gfx::equalColors(selection.group()->color(), pen.color)) return;
    selection.group()->setColor(pen.color);
    selection.recordChange();
}

void CanvasPen::setLineWidth(double width) {
    if (!(width >= 0) || std::isinf(width)) return;
    NewTools& pen = _canvas.tools.pen();
    if (width != pen.lineWidth) _canvas.freehand.endWaiting();
    pen.lineWidth = width;
    const auto text = _canvas.typing.restyledText();
    if (text && text->lineWidth() != width) {
        text->takeLineWidth(width);
        return _canvas.home.redisplay();
    }
    CanvasSelection& selection = _canvas.selection;
    if (!selection.isValid() || selection.group()->lineWidth() == width) return;
    selection.group()->setLineWidth(width);
    if (_canvas.tools.forgiving()) selection.group()->growToLineWidth();
    selection.recordChange();
}

// ---- measuring

void CanvasPen::setCalibration(double calibration) {
    _canvas.tools.pen().calibration = calibration;
    measuringChanged();
}

void CanvasPen::setUnit(std::string unit) {
    _canvas.tools.pen().unit = std::move(unit);
    measuringChanged();
}

void CanvasPen::setShowMeasurement(bool show) {
    _canvas.tools.pen().showMeasurement = show;
    measuringChanged();
}

void CanvasPen::measuringChanged() {
    _canvas.tools.refreshShared();
    _canvas.screen.invalidate();
    _canvas.journal.noteMeasuring();
}

}  // namespace kalim
