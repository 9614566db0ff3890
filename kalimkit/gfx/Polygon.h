#pragma once

#include <vector>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim::gfx {

// The corners of an area, in order; the last is joined to the first.
using Polygon = std::vector<Point>;

// The corners of a rectangle, carried by the transform.
KALIM_API Polygon cornersOf(const Rect& rect, const AffineTransform& transform = {});
// Whether it is a rectangle whose sides lie along the axes.
KALIM_API bool isUpright(const Polygon& polygon);
KALIM_API Rect boundsOf(const Polygon& polygon);
KALIM_API Path pathOf(const Polygon& polygon);
// Twice its area: below 0 where the corners go round the other way than those of a rectangle do.
KALIM_API double windingOf(const Polygon& polygon);

}  // namespace kalim::gfx
