#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"

namespace kalim {

// The tail of a bubble: from a base across `from`, half as wide on either side, it tapers to a
// rounded tip. Its sides are hollow a little. Empty where the two are at one place. Canvas points.
KALIM_API gfx::Path pointerOutline(gfx::Point from, gfx::Point tip, double halfBase);

// A box with round corners as a closed outline; the radius is clamped to the box.
KALIM_API gfx::Path roundBox(const gfx::Rect& box, double radius);

}  // namespace kalim
