#pragma once

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// The kinds of picture files that are read.
enum class FileFormat { Jpeg, Png, Webp, Other };

// Goes by how a file begins, of which 16 bytes are enough.
KALIM_API FileFormat fileFormat(ByteSpan start);
// "image/jpeg"; null for another file.
KALIM_API const char* mediaType(FileFormat format);
// How many bits each sample of a picture's file has, those of a palette's colours where it has one;
// 0 for a file whose header cannot be read.
KALIM_API int bitDepth(ByteSpan file);

}  // namespace kalim::codec
