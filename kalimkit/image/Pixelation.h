#pragma once

#include <cstdint>

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

// The mean colours of the square blocks of a raster, row by row from the top left. A block has no
// alpha: means are taken over premultiplied bytes and the result is opaque.
//
// Blocks at the right edge that are not whole also take in the first pixels of the following rows,
// those at the bottom only the rows that exist. That is deliberate: it is what the blocks of a
// raster read in one run come to, and pictures already made rely on it.
//
// `level` is the side of a block in pixels. Empty for an empty raster or a level below 1.
KALIM_API gfx::Bitmap blockColors(const gfx::Bitmap& raster, std::int32_t level);

// The blocks laid out again: a raster of `size` pixels, each taking the colour of the block that
// its centre lies in, `scale` pixels standing for one of the raster that the blocks came from.
// `blocks` must cover the size. Whole pictures are written into `target`, which is only made anew
// where it has another size.
KALIM_API void spreadBlocks(const gfx::Bitmap& blocks, std::int32_t level, double scale,
                            gfx::PixelSize size, gfx::Bitmap& target);

}  // namespace kalim
