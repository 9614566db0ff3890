#pragma once

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim::ui {

// What lies between two values: the first at a share of 0, the second at 1, exactly; shares beyond
// go on in the same direction.
KALIM_API double mix(double from, double to, double share);
KALIM_API gfx::Point mix(gfx::Point from, gfx::Point to, double share);
// Sides do not become negative.
KALIM_API gfx::Rect mix(const gfx::Rect& from, const gfx::Rect& to, double share);
// Premultiplied, so that a transparent colour lends nothing but its transparency; components stay
// within 0 to 1.
KALIM_API gfx::Color mix(const gfx::Color& from, const gfx::Color& to, double share);
// Null counts as the other one made transparent; null for two of them.
KALIM_API gfx::ColorRef mix(const gfx::ColorRef& from, const gfx::ColorRef& to, double share);
// Transforms that only scale and rotate, and move, do so on the way: the rotation goes the shorter
// way round. Of others each component is mixed by itself.
KALIM_API gfx::AffineTransform mix(const gfx::AffineTransform& from, const gfx::AffineTransform& to,
                                   double share);

}  // namespace kalim::ui
