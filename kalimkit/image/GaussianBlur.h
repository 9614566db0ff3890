#pragma once

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

// How many pixels a blurred picture is larger than its source on each side: three standard
// deviations rounded up, beyond which a Gaussian is worth less than half a level.
// 0 for a radius that is negative or not finite.
KALIM_API int blurExtent(double radius);

// The raster seen through a Gaussian, on transparent ground, so that its edges run out. `radius` is
// the standard deviation in pixels. The result is larger by blurExtent(radius) on every side: the
// raster's pixel (x, y) lies at (x + extent, y + extent). Within 2 levels of the true Gaussian.
//
// The raster itself for a radius of 0. Empty for an empty raster, for a radius that is negative or
// not finite, and where the result would have more than 32767 pixels along a side or more than 2^27
// in all.
KALIM_API gfx::Bitmap gaussianBlurred(const gfx::Bitmap& raster, double radius);

}  // namespace kalim
