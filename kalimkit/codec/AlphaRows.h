#pragma once

#include <cstddef>
#include <cstdint>

#include "kalimkit/gfx/Bitmap.h"

namespace kalim::codec {

// Between the bitmap's premultiplied colours and the straight ones of the files. A row is blue,
// green, red, alpha by four bytes.

bool isOpaque(const gfx::Bitmap& bitmap);

void premultiplyRow(std::uint8_t* bgra, std::size_t pixelCount);

// Exact for every colour that fits its alpha: premultiplying gives the same bytes again. The rows
// may be one and the same.
void straightenRow(const std::uint8_t* premultiplied, std::uint8_t* straight,
                   std::size_t pixelCount);

}  // namespace kalim::codec
