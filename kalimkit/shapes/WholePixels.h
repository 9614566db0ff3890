#pragma once

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// A rectangle in user space that, filled without anti-aliasing, covers every device pixel that the
// given one touches. `toPixels` carries user space to device pixels. Where axes stay parallel, that
// is exactly those pixels, an edge within 1/10000 of a pixel's border counting as on it; otherwise
// the rectangle grown by one device pixel on each side. The rectangle itself under a transform that
// cannot be inverted.
KALIM_API gfx::Rect wholePixels(const gfx::Rect& rect, const gfx::AffineTransform& toPixels);

}  // namespace kalim
