#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"

namespace kalim {

// The outline of the tapered arrow in its own frame: the tip at the origin, the arrow running along
// positive x to the start point. `halfWidth` is half the head's width at its base, `tailWidth` the
// thickness at the far end, which a half circle rounds off. Canvas points.
KALIM_API gfx::Path arrowOutline(double length, double halfWidth, double tailWidth);

// The outline of the block arrow in its own frame: the tip at the origin, the tail along positive
// x.
KALIM_API gfx::Path fatArrowOutline(double length);

}  // namespace kalim
