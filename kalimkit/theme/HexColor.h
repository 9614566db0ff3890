#pragma once

#include <cstdint>
#include <string_view>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

// Colours from hexadecimal notations. Each call makes a new colour object; alpha is 0 to 1.

// From 0xRRGGBB; higher bits are ignored.
KALIM_API gfx::ColorRef colorWithHex2(std::uint32_t hex);
KALIM_API gfx::ColorRef colorWithHex2Alpha(std::uint32_t hex, double alpha);

// From "RRGGBB" in UTF-8, either case, with "0X" or "#" or both in this order before it and white
// space around it. Any other length gives the clear colour (transparent black), and so does a text
// of fewer than six characters with its prefix. A pair that is no hexadecimal number counts as 0.
KALIM_API gfx::ColorRef colorWithHexString(std::string_view text);
KALIM_API gfx::ColorRef colorWithHexStringAlpha(std::string_view text, double alpha);

}  // namespace kalim
