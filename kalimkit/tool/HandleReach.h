#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/tool/MoveDirection.h"

namespace kalim {

// How far a handle reaches into its own shape where small shapes are to be movable: by at most a
// third of the side, so that a third in the middle is left. Away from the shape nothing is limited.

// The corner is one of the four of the box by its direction; any other is not limited.
KALIM_API bool isWithinThirdsOfCorner(gfx::Point p, MoveDirection corner, const gfx::Rect& box);

// Of a segment that ends at the handle and at `other`.
KALIM_API bool isWithinThirdOfSegment(gfx::Point p, gfx::Point handle, gfx::Point other);

// The vertex may lie anywhere in the box of its shape.
KALIM_API bool isWithinThirdsOfVertex(gfx::Point p, gfx::Point vertex, const gfx::Rect& box);

}  // namespace kalim
