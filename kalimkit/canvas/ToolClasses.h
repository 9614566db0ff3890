#pragma once

#include <cstdint>
#include <limits>
#include <string_view>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// The tool-type number of a tool whose class is on the list of no type.
inline constexpr std::int64_t toolTypeNotFound = std::numeric_limits<std::int64_t>::max();

// Finds the class for a tool-type number (ToolType.h); null for a number without one.
KALIM_API const ToolClass* getClassForToolType(std::int64_t type);

// The number of the tool's exact class; -1 for null, toolTypeNotFound for a class that has none.
KALIM_API std::int64_t getToolTypeForClass(const MDrawTool* tool);

// Finds the class of that name, with or without a tool-type number; null for an unknown name.
KALIM_API const ToolClass* toolClassNamed(std::string_view name);

}  // namespace kalim
