#pragma once

#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/Saving.h"
#include "kalimkit/gfx/Bitmap.h"

namespace kalim::codec {

// A new JPEG of a result. It has no metadata and no profile, and its pixels are stored as those of
// the source are: the orientation that the source's metadata tell must be told again.
struct LaidJpeg {
    // A whole file, or nothing where the result cannot be laid into the source.
    Bytes bytes;
    // Why it cannot, or why some blocks at the rim of a crop that nothing covers had to be encoded
    // anew: one sentence without a final full stop. Empty where all of them are the source's.
    std::string encodedAnew;
    // All colours are the same and only their common value is stored: a profile of RGB does not
    // fit.
    bool isGrey = false;
};

// Lays a result into the JPEG that it came from: blocks that nothing covers keep their
// coefficients, all the others are made of the result's pixels with the source's tables and
// sampling, and so are those of a part whose edges and turns fall on the borders of cells
// (pixelGrid()). Quantisation tables, sampling, the progressive or the sequential kind and the
// restart interval stay, turned with the picture; Huffman tables are made anew, also of a source
// with arithmetic coding.
//
// `result` is in the colours of the source's own profile; what is transparent shows white.
// `touched` has a byte for each of its pixels, row by row, 0 where the pixel is the source's. Its
// other pixels are read only in cells that `source.hidden` meets, of which nothing is taken from
// the file, so they have to be right there. What lies beyond `source.part` is drawn whatever
// `touched` says; `source.pixels` is not used. Into a grey file that gets a coloured pixel come
// neutral colours.
LaidJpeg layIntoJpeg(const gfx::Bitmap& result, const SavingSource& source, ByteSpan touched);

// Encodes a result anew as the JPEG file was encoded: with its quantisation tables, sampling,
// progressive or sequential kind, restart interval and stored orientation. Inks (CMYK) become
// colours of about the quality that the tables tell. Nothing but that is taken from the file.
LaidJpeg encodeLikeJpeg(const gfx::Bitmap& result, ByteSpan file);

// The quality, 1 to 100, whose usual tables are nearest to those of the JPEG file; nothing for a
// file that is none.
std::optional<int> jpegQuality(ByteSpan file);

}  // namespace kalim::codec
