#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

// The distance of p from the infinite line through a and b, in single precision; NaN where a equals
// b, so that no comparison with it holds.
KALIM_API double distanceFromLine(gfx::Point p, gfx::Point a, gfx::Point b);

}  // namespace kalim
