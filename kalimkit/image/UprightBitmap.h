#pragma once

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// The raster turned as its orientation says, pixel by pixel. An orientation above 7 counts as Up.
KALIM_API gfx::Bitmap uprightBitmap(const gfx::Bitmap& raster, gfx::ImageOrientation orientation);

}  // namespace kalim
