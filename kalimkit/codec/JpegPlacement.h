#pragma once

#include <string>

#include "kalimkit/codec/PixelMap.h"
#include "kalimkit/codec/Saving.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::codec {

// Where the pixels of a JPEG come to lie in a new one that is stored the same way.
struct JpegPlacement {
    // From the source's stored pixels and from its upright ones to the new file's, and from these
    // to the result's.
    PixelMap fromSource;
    PixelMap fromUpright;
    PixelMap toResult;
    // Of the new file, stored.
    gfx::PixelSize size;
    gfx::PixelSize cell;
    // The new file's pixels that the source has: the others are drawn.
    gfx::PixelRect covered;
    // The source goes on behind the right or the lower edge, and within the last cells.
    bool cutsRight = false;
    bool cutsBottom = false;

    // `stored` and `cell` are those of the source.
    static JpegPlacement of(const SavingSource& source, gfx::PixelSize result,
                            gfx::ImageOrientation orientation, gfx::PixelSize stored,
                            gfx::PixelSize cell);
    // Whether the source's cells come to lie on cells.
    bool isOnCells() const;
};

}  // namespace kalim::codec
