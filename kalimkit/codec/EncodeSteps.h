#pragma once

#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/PictureRows.h"

namespace kalim::codec {

// What Encode.h does with bitmaps, of rows in the colours of a profile, sRGB for an empty one. All
// fill `bytes` with a whole file and answer with nothing, or leave it empty and answer with a
// message.

std::optional<std::string> encodePng(const PictureRows& rows, ByteSpan profile, Bytes& bytes);
// Whether a PNG of grey or of three colours can have the profile: its library, by which most
// programs read, looks at some fields more closely than others do.
bool pngTakes(ByteSpan profile, bool isGrey);
std::optional<std::string> encodeJpeg(const PictureRows& rows, ByteSpan profile, int quality,
                                      Bytes& bytes);
// No quality stands for one without any loss, also of colours that nobody sees. The format knows no
// grey: the profile is one of three colours.
std::optional<std::string> encodeWebp(const PictureRows& rows, ByteSpan profile,
                                      std::optional<int> quality, Bytes& bytes);

}  // namespace kalim::codec
