#pragma once

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/PixelGrid.h"

namespace kalim {

// How a file holds the pixels of its upright picture together, as codec::pixelGrid() says. A module
// that was built without the libraries for picture files knows of a JPEG no more than what none
// exceeds.
gfx::PixelGrid pageGrid(codec::ByteSpan file);

}  // namespace kalim
