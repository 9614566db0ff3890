#pragma once

#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/PixelRect.h"

namespace kalim {

// How a picture that a canvas handed out at its picture's scale came from that.
struct ExportedPicture {
    // As the canvas was given it, upright.
    gfx::ImageRef source;
    // The part of it that is shown, pixels, and where the part's corner lies in what was handed
    // out, before that is turned.
    gfx::PixelRect part;
    int x = 0;
    int y = 0;
    // Counter-clockwise, 0 to 3.
    int quarterTurns = 0;
    // What patches hide for certain, pixels of the source.
    gfx::PixelRects hidden;
};

}  // namespace kalim
