#include "kalimkit/canvas/ToolClasses.h"

#include "kalimkit/shapes/ToolRegistry.h"

namespace kalim {

const ToolClass* getClassForToolType(std::int64_t type) {
    return ToolRegistry::current().kindOfType(type);
}

std::int64_t getToolTypeForClass(const MDrawTool* tool) {
    if (!tool) return -1;
    return tool->toolClass().row.toolType.value_or(toolTypeNotFound);
}

const ToolClass* toolClassNamed(std::string_view name) {
    return ToolRegistry::current().kindNamed(name);
}

}  // namespace kalim
