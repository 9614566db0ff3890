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

}  // namespace kalim::codec
