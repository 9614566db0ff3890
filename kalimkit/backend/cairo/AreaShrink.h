#pragma once

#include "kalimkit/gfx/Bitmap.h"

namespace kalim::gfx {

// The picture at a smaller size, each pixel the average of the area it covers in the source;
// source pixels on an edge count in proportion. The target's sides lie between 1 and the source's.
Bitmap areaShrink(const Bitmap& source, PixelSize target);

}  // namespace kalim::gfx
