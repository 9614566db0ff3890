#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// What tools get that are made from now on.
struct KALIM_API NewTools {
    // Readies a tool that a finger begins to draw.
    void prepare(MDrawTool& tool) const;
    // Gives a tool that is made, not opened, what new ones have under the rules.
    void applyRules(MDrawTool& tool) const;
    // What all tools of the canvas share: measuring and rules.
    void applyShared(MDrawTool& tool) const;

    const ToolClass* toolClass = nullptr;
    std::uint64_t drawType = 0;
    gfx::ColorRef color;
    double lineWidth = 7.0;
    double calibration = 0;
    // Empty until the host chooses one; tools then keep their own.
    std::string unit;
    bool showMeasurement = false;
    ToolRules rules;
    // See MDrawView::setPlacesPoints.
    bool placesPoints = false;

    // ---- what was chosen for tools of a class, see ToolProperty
    ToolPropertyValues& propertiesOf(const ToolClass& kind) { return _properties[&kind]; }
    std::optional<ToolPropertyValue> property(const ToolClass& kind, std::string_view name) const;
    // A text that tools of the class take as a detail.
    void setDetail(const ToolClass& kind, std::string_view name, std::string text);

private:
    std::map<const ToolClass*, std::map<std::string, std::string, std::less<>>> _details;
    std::map<const ToolClass*, ToolPropertyValues> _properties;
};

}  // namespace kalim
