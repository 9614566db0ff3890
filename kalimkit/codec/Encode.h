#pragma once

#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// All fill `bytes` with a whole file and answer with nothing, or leave it empty and answer with a
// message. Nothing of a picture's former file is written, neither place nor time nor camera.

// Straight alpha; without an alpha channel when every pixel is opaque.
KALIM_API std::optional<std::string> encodePng(const gfx::Bitmap& bitmap, Bytes& bytes);

// What is transparent shows white. Quality 1 to 100, values beyond are clamped. Colours are kept at
// full resolution, because thin coloured strokes smear otherwise.
KALIM_API std::optional<std::string> encodeJpeg(const gfx::Bitmap& bitmap, int quality,
                                                Bytes& bytes);

// The format holds no side of more pixels.
constexpr int longestWebpSide = 16383;
// Straight alpha where a pixel is not opaque. Quality 1 to 100, values beyond are clamped. No side
// is longer than the above; colours are kept at half resolution, as the format has it.
KALIM_API std::optional<std::string> encodeWebp(const gfx::Bitmap& bitmap, int quality,
                                                Bytes& bytes);

}  // namespace kalim::codec
