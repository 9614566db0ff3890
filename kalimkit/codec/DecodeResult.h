#pragma once

#include <optional>
#include <string>

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/PixelGrid.h"

namespace kalim::codec {

// What the file of an imported format says beside its pixels.
struct ImportedFacts {
    // Of a sample.
    int bitDepth = 8;
    // What its colour profile calls itself; empty without one.
    std::string profileName;
};

// A decoded picture, or why there is none.
struct DecodeResult {
    // As stored in the file, before the orientation is applied; empty after an error.
    gfx::Bitmap bitmap;
    gfx::ImageOrientation orientation = gfx::ImageOrientation::Up;
    // Which of the upright picture's pixels the file holds together.
    gfx::PixelGrid grid;
    // Nothing for a JPEG, PNG or WebP file, which says all that by itself.
    std::optional<ImportedFacts> imported;
    // One sentence for the user that begins with the picture's name, without a final full stop.
    std::optional<std::string> error;
};

}  // namespace kalim::codec
