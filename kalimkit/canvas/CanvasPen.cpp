#include "kalimkit/canvas/CanvasPen.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasFreehand.h"
#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasJournal.h"
#include "kalimkit/canvas/CanvasRestyling.h"
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

void CanvasPen::setFineHandles(bool fine) {
    _canvas.tools.setFineHandles(fine);
    if (const auto& group = _canvas.selection.group()) group->setRules(_canvas.tools.pen().rules);
    _canvas.screen.invalidate();
}

// ---- the class and the style

void CanvasPen::choose(const ToolClass* toolClass, std::uint64_t drawType) {
    NewTools& pen = _canvas.tools.pen();
    if (toolClass != pen.toolClass) {
        _canvas.freehand.endWaiting();
        _canvas.finger.completePoints();
    }
    pen.toolClass = toolClass;
    if (!pen.toolClass) _canvas.finger.stopDrawing();
    const ToolRef& created = _canvas.finger.tool();
    const ToolClass* creating = created ? &created->toolClass() : nullptr;
    if (pen.toolClass != creating) pen.drawType = drawType;
}

void CanvasPen::setDrawType(std::uint64_t drawType, const ToolClass* toolClass) {
    _canvas.tools.pen().drawType = drawType;
    CanvasSelection& selection = _canvas.selection;
    selection.endNudging();
    const auto group = selection.changeable();
    if (!toolClass || !group || group->drawType() == drawType) return;
    group->setDrawTypeForType(drawType, toolClass);
    selection.recordChange(group);
}

// ---- the colour and the width

void CanvasPen::setColor(gfx::ColorRef color) {
    if (!color || _canvas.restyling.isBrokenOff()) return;
    NewTools& pen = _canvas.tools.pen();
    if (!gfx::equalColors(color, pen.color)) _canvas.freehand.endWaiting();
    pen.color = std::move(color);
    const auto text = _canvas.typing.restyledText();
    if (text && !gfx::equalColors(text->color(), pen.color)) {
        text->takeColor(pen.color);
        return _canvas.home.redisplay();
    }
    CanvasSelection& selection = _canvas.selection;
    selection.endNudging();
    const auto group = selection.changeable();
    if (!group || gfx::equalColors(group->color(), pen.color)) return;
    group->setColor(pen.color);
    selection.recordChange(group);
}

void CanvasPen::setLineWidth(double width) {
    if (!(width >= 0) || std::isinf(width) || _canvas.restyling.isBrokenOff()) return;
    NewTools& pen = _canvas.tools.pen();
    if (width != pen.lineWidth) _canvas.freehand.endWaiting();
    pen.lineWidth = width;
    const auto text = _canvas.typing.restyledText();
    if (text && text->lineWidth() != width) {
        text->takeLineWidth(width);
        return _canvas.home.redisplay();
    }
    CanvasSelection& selection = _canvas.selection;
    selection.endNudging();
    const auto group = selection.changeable();
    if (!group || group->lineWidth() == width) return;
    group->setLineWidth(width);
    if (_canvas.tools.forgiving()) group->growToLineWidth();
    selection.recordChange(group);
}

// ---- properties

bool CanvasPen::setProperty(const std::string& name, const ToolPropertyValue& value) {
    if (_canvas.restyling.isBrokenOff()) return false;
    bool isTaken = false;
    NewTools& pen = _canvas.tools.pen();
    const ToolProperty* const known = pen.toolClass ? pen.toolClass->propertyNamed(name) : nullptr;
    if (known && known->takes(value)) {
        ToolPropertyValues& chosen = pen.propertiesOf(*pen.toolClass);
        std::erase_if(chosen, [&name](const auto& each) { return each.first == name; });
        chosen.emplace_back(name, value);
        isTaken = true;
    }
    if (const auto text = _canvas.typing.restyledText()) {
        if (!text->setProperty(name, value)) return isTaken;
        _canvas.home.redisplay();
        return true;
    }
    CanvasSelection& selection = _canvas.selection;
    selection.endNudging();
    const auto group = selection.changeable();
    if (!group) return isTaken;
    bool isChanged = false;
    for (const ToolRef& tool : group->subTools()) {
        if (tool->property(name) == value) continue;
        isChanged = tool->setProperty(name, value) || isChanged;
    }
    if (!isChanged) return isTaken;
    const ToolRef others = shareShade(group, name, value);
    selection.recordChange(others ? others : group);
    return true;
}

// There is one shade: what is chosen for it is chosen for all tools that make it, as one step. Null
// where the selection makes none, or all of it.
ToolRef CanvasPen::shareShade(const ToolRef& changed, const std::string& name,
                              const ToolPropertyValue& value) const {
    const auto isShade = [](const ToolRef& tool) {
        return tool->toolClass().layer() == ToolLayer::Shade;
    };
    if (!std::ranges::any_of(membersOf(changed), isShade)) return nullptr;
    const ToolRef together = changed->copyOfGroup();
    for (const ToolRef& tool : _canvas.tools.list()) {
        const bool isOther = isShade(tool) && !changed->containTool(tool);
        if (!isOther || tool->isNewBuild() || tool->property(name) == value) continue;
        if (!tool->setProperty(name, value)) continue;
        together->addSubTool(tool);
        _canvas.screen.markChanged(tool);
    }
    return together;
}

bool CanvasPen::setDetail(const std::string& name, const std::string& text) {
    const auto hasIt = [&name](const ToolClass& kind) {
        return std::ranges::any_of(kind.details(), [&name](const ToolDetailRule& rule) {
            return rule.name == name && rule.type == ToolDetailRule::Type::Text;
        });
    };
    NewTools& pen = _canvas.tools.pen();
    const bool isOfPen = pen.toolClass && hasIt(*pen.toolClass);
    if (isOfPen) pen.setDetail(*pen.toolClass, name, text);
    CanvasSelection& selection = _canvas.selection;
    selection.endNudging();
    const auto group = selection.changeable();
    if (!group) return isOfPen;
    bool isTaken = false;
    for (const ToolRef& tool : group->subTools()) {
        if (hasIt(tool->toolClass())) isTaken = tool->takeDetail(name, text) || isTaken;
    }
    if (isTaken) selection.recordChange(group);
    return isOfPen || isTaken;
}

std::optional<ToolPropertyValue> CanvasPen::property(const std::string& name) const {
    const CanvasSelection& selection = _canvas.selection;
    if (!selection.isValid()) {
        const NewTools& pen = _canvas.tools.pen();
        return pen.toolClass ? pen.property(*pen.toolClass, name) : std::nullopt;
    }
    const ToolList& tools = selection.group()->subTools();
    const auto value = tools.front()->property(name);
    const bool isCommon =
        std::ranges::all_of(tools, [&](const auto& tool) { return tool->property(name) == value; });
    return isCommon ? value : std::nullopt;
}

std::vector<const ToolProperty*> CanvasPen::properties() const {
    const CanvasSelection& selection = _canvas.selection;
    const bool hasSelection = selection.isValid();
    const ToolClass* const kind = hasSelection ? &selection.group()->subTools().front()->toolClass()
                                               : _canvas.tools.pen().toolClass;
    std::vector<const ToolProperty*> common;
    if (!kind) return common;
    for (const ToolProperty& each : kind->properties()) {
        const auto has = [&each](const ToolRef& tool) {
            return tool->toolClass().propertyNamed(each.name) != nullptr;
        };
        const bool isCommon =
            !hasSelection || std::ranges::all_of(selection.group()->subTools(), has);
        if (isCommon) common.push_back(&each);
    }
    return common;
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
