#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"
#include "kalimkit/shapes/outline/Dashes.h"

namespace kalim {

// An arrow in its own frame, as arrowOutline() has it: the tip at the origin, the tail on positive
// x. Lengths are canvas points.
struct CurvedArrow {
    double length = 0;
    // How far the middle lies beside the straight line, as a share of the length; positive where y
    // grows.
    double bend = 0;
    // Half the width of a head at its base, and the thickness of a tail that tapers off.
    double headHalfWidth = 0;
    double tailWidth = 0;
    // The thickness of a line without heads.
    double lineWidth = 0;
    bool hasHeadAtEnd = true;
    bool hasHeadAtStart = false;
    // Of the shaft, which does not taper then.
    std::optional<Dashes> dashes;
};

// What of a shaft with dashes is the pen: heads may be finer than the line.
KALIM_API double shaftWidth(const CurvedArrow& arrow);

// One outline to be filled; with dashes several, which may overlap.
KALIM_API gfx::Path curvedArrowOutline(const CurvedArrow& arrow);

// The middle of the curve.
KALIM_API gfx::Point middleOf(const CurvedArrow& arrow);

// From a point in the arrow's frame to the nearest point of its curve.
KALIM_API double distanceFrom(const CurvedArrow& arrow, gfx::Point p);

}  // namespace kalim
