#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"

namespace kalim {

// The rectangle's outline with rounded corners, started at the top-left corner and left open. The
// radius is not clamped: corners of a box smaller than twice the radius cross each other.
KALIM_API gfx::Path boxOutline(const gfx::Rect& frame, double radius);

}  // namespace kalim
