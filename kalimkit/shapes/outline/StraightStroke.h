#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

// Where a stroke ends that is to run straight to a point: there, or level or plumb with its start
// where that is nearly so.
KALIM_API gfx::Point straightEnd(gfx::Point start, gfx::Point end);

}  // namespace kalim
