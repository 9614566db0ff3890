#include "kalimkit/canvas/NewTools.h"

#include <utility>

namespace kalim {

void NewTools::prepare(MDrawTool& tool) const {
    applyShared(tool);
    tool.setSelected(false);
    tool.setColor(color);
    tool.setDrawType(drawType);
    tool.setLineWidth(lineWidth);
    applyRules(tool);
    if (const auto given = _details.find(&tool.toolClass()); given != _details.end()) {
        for (const auto& [name, text] : given->second)
            tool.takeDetail(name, text);
    }
    if (const auto chosen = _properties.find(&tool.toolClass()); chosen != _properties.end()) {
        for (const auto& [name, value] : chosen->second)
            tool.setProperty(name, value);
    }
    tool.setIsNewBuild(true);
    // Where points are still to come the shape says itself when it is finished.
    if (tool.toolClass().beginning() != ToolBeginning::Taps) tool.finalize();
}

std::optional<ToolPropertyValue> NewTools::property(const ToolClass& kind,
                                                    std::string_view name) const {
    const ToolProperty* const known = kind.propertyNamed(name);
    if (!known) return std::nullopt;
    if (const auto chosen = _properties.find(&kind); chosen != _properties.end()) {
        for (const auto& [each, value] : chosen->second) {
            if (each == name) return value;
        }
    }
    return known->usualValue();
}

void NewTools::setDetail(const ToolClass& kind, std::string_view name, std::string text) {
    _details[&kind].insert_or_assign(std::string(name), std::move(text));
}

void NewTools::applyRules(MDrawTool& tool) const {
    if (!rules.forgiving) return;
    for (const ToolProperty& property : tool.toolClass().properties()) {
        if (property.isForgiving) tool.setProperty(property.name, 1.0);
    }
}

void NewTools::applyShared(MDrawTool& tool) const {
    tool.setRules(rules);
    tool.setCalibration(calibration);
    if (!unit.empty()) tool.setUnit(unit);
    tool.setShowMeasurement(showMeasurement);
}

}  // namespace kalim
