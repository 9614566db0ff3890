#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string_view>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// The tool-type number of a tool whose class is on the list of no type.
inline constexpr std::int64_t toolTypeNotFound = std::numeric_limits<std::int64_t>::max();

// The class for a tool-type number (ToolType.h); null for a number without one.
KALIM_API const ToolClass* getClassForToolType(std::int64_t type);

// The number of the tool's exact class; -1 for null, toolTypeNotFound for a class that has none.
KALIM_API std::int64_t getToolTypeForClass(const MDrawTool* tool);

// Whether the tool is a patch, which is drawn in a pass of its own.
KALIM_API bool isMosaic(const MDrawTool& tool);

// Every class that a caller can make by its name, with or without a tool-type number.
KALIM_API std::span<const ToolClass* const> toolClasses();
// Null for an unknown name.
KALIM_API const ToolClass* toolClassNamed(std::string_view name);

}  // namespace kalim
