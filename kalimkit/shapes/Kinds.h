#pragma once

#include <span>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/ToolClass.h"

namespace kalim {

// The kinds of tools that the library brings along. A new one gets its place here; all else that
// there is to know of it stands in its own row.
KALIM_API std::span<const ToolClass* const> kinds();

}  // namespace kalim
