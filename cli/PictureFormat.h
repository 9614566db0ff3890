#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/codec/Bytes.h"

namespace kalim::cli {

// The kinds of picture files that are written.
enum class PictureFormat { Png, Jpeg, Webp };

// What a sentence about names of pictures lists.
inline constexpr const char* pictureEndings = ".png, .jpg, .jpeg or .webp";

// Goes by a name as "png", in any letters; answers with nothing for any other.
std::optional<PictureFormat> pictureFormat(std::string_view name);
// Goes by the ending of a path; answers with nothing without one of those.
std::optional<PictureFormat> pictureFormatOfPath(const std::string& path);
// By how a file begins: as what a result of it is written. That of an imported format is a PNG, or
// a JPEG for a photo that is an AVIF or HEIC file; nothing for no picture.
std::optional<PictureFormat> pictureFormatOfBytes(codec::ByteSpan bytes);
// The dot belongs to it.
std::string endingOf(PictureFormat format);

}  // namespace kalim::cli
