#include "kalimkit/canvas/ToolClasses.h"

#include <algorithm>

#include "kalimkit/shapes/Kinds.h"

namespace kalim {

namespace {

template <typename Question>
const ToolClass* kindWith(Question question) {
    const auto all = kinds();
    const auto found = std::ranges::find_if(all, question);
    return found == all.end() ? nullptr : *found;
}

}  // namespace

const ToolClass* getClassForToolType(std::int64_t type) {
    return kindWith([type](const ToolClass* kind) { return kind->row.toolType == type; });
}

std::int64_t getToolTypeForClass(const MDrawTool* tool) {
    if (!tool) return -1;
    return tool->toolClass().row.toolType.value_or(toolTypeNotFound);
}

const ToolClass* toolClassNamed(std::string_view name) {
    return kindWith([name](const ToolClass* kind) { return kind->name == name; });
}

}  // namespace kalim
