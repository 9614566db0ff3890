#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// Small pictures as texts, for whatever keeps them among other words: "WIDTHxHEIGHT:" and the
// pixels in base64, row by row from the top, each red, green, blue and alpha, not premultiplied.

// No side has more pixels.
inline constexpr int largestSmallPicture = 256;

// The picture as it is seen, made smaller where it is larger than that. Empty for null, and where
// there is no room for it.
KALIM_API std::string smallPictureText(const gfx::ImageRef& image);

// Nothing for a text that is no such picture, or too large a one.
KALIM_API std::optional<gfx::Bitmap> readSmallPicture(std::string_view text);

}  // namespace kalim
