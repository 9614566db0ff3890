#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

// Whether p hits a segment of a freehand stroke of that width: it lies near the infinite line, and
// in the segment's box or in a disc about one of its ends. The box reaches from `from` to `to`; on
// a side where `to` lies left of or above `from` it lies, deliberately, beyond `from` instead.
// `margin` is how far from the line's edge a finger still hits.
KALIM_API bool hitsFreehandSegment(gfx::Point p, gfx::Point from, gfx::Point to, double lineWidth,
                                   double margin = 8);

// How far from the segment's box a hit can lie at most, points.
KALIM_API double freehandHitReach(double lineWidth, double margin = 8);

}  // namespace kalim
