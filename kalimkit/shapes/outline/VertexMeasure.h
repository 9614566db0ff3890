#pragma once

#include <span>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

// From the first vertex to the last; the way back does not count.
KALIM_API double lengthOfVertices(std::span<const gfx::Point> vertices);

// The area of the closed polygon; positive where it runs clockwise as seen with y downwards.
KALIM_API double signedAreaOfVertices(std::span<const gfx::Point> vertices);

// Leads from an angle's vertex to a point, in radians of single precision.
KALIM_API float directionOf(gfx::Point vertex, gfx::Point p);

// Measures from the arm through p0 to the arm through p2, in degrees from 0 to below 360 that grow
// from the x axis towards the y axis.
KALIM_API double degreesBetween(gfx::Point p0, gfx::Point vertex, gfx::Point p2);

// Measures the quadratic curve as a polygon of ten sides, in single precision.
KALIM_API float lengthOfQuadCurve(gfx::Point start, gfx::Point control, gfx::Point end);

}  // namespace kalim
