#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"

namespace kalim::gfx {

// The closed outline of a rectangle whose corners are quarter circles. The radius is at most half
// the shorter side; one of 0 or below yields the rectangle.
KALIM_API Path roundedRect(const Rect& rect, double radius);

}  // namespace kalim::gfx
