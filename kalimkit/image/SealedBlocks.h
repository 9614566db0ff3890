#pragma once

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/PixelRect.h"

namespace kalim {

// The least side of a sealed block, pixels.
constexpr int smallestSealedBlock = 8;

// The colours of blocks that hide parts of a picture for certain: they depend on nothing that is
// hidden, by any of the regions, but spread from the pixels just outside inwards, with a pattern
// that is the same for every picture. The side of a block is `level` pixels, and the first one is
// in the picture's top left corner; the result has a pixel a block, row by row, all opaque. Blocks
// that the regions do not touch have any colour. Without a visible pixel beside a region it is
// grey. The cost is that of the regions' edges and of their blocks.
KALIM_API gfx::Bitmap sealedColors(const gfx::Bitmap& picture, const gfx::PixelRects& hidden,
                                   int level);

}  // namespace kalim
