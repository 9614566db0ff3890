#pragma once

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// The kinds of picture files that are read for their pixels alone: nothing is written in them, and
// nothing else that they hold goes along with a result.
enum class ImportedFormat { None, Pnm, Bmp, Gif, Tiff, Avif, Heic };

// Goes by how a file begins, of which 16 bytes are enough.
KALIM_API ImportedFormat importedFormat(ByteSpan start);
// "image/gif"; null for None. That of PNM files is the one that stands for all six of them.
KALIM_API const char* mediaType(ImportedFormat format);
// Whether such files are photos that lost something when they were encoded, and have no transparent
// pixels: a JPEG picture holds as much of them as one without a loss does. Goes by the file's
// header, of which the first 64 KiB are enough.
KALIM_API bool isOpaquePhoto(ByteSpan file);

}  // namespace kalim::codec
