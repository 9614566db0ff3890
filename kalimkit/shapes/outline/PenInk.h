#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/shapes/outline/StrokeSmoothing.h"

namespace kalim {

// How a pen touches at a point of a stroke, kept as a point: its pressure, 0 to 1, and how many
// degrees it leans, 0 upright to 90.
using PenTouch = gfx::Point;

// The share of the chosen width that it draws with: all of it at full pressure. A pen that leans
// draws broader, as the side of a pencil does.
KALIM_API double inkShare(PenTouch touch);

// Adds what a round pen covers on its way along the curve while its width goes evenly from one to
// the other. All parts run the same way round, so that filling them as one has no gaps.
KALIM_API void addInk(gfx::Path& path, const SmoothedCurve& curve, double startWidth,
                      double endWidth);

}  // namespace kalim
