#pragma once

#include <cstdint>
#include <string>

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec::test {

// ---- files that the codec itself never writes, made with the image libraries
// ---------------------

// One PNG of the given libpng colour type; `rows` holds the packed rows one after another.
struct PngRecipe {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
    int bitDepth = 8;
    int colorType = 0;
    bool interlaced = false;
    Bytes rows;
    // Red, green, blue by threes.
    Bytes palette{};
    // The alpha of each palette entry.
    Bytes paletteAlpha{};
    // The grey value that is transparent, none when negative.
    int transparentGrey = -1;
};
Bytes makePng(const PngRecipe& recipe);

// A picture of 16 x 16 pixels in one colour. The libjpeg colour spaces of the samples handed in and
// of the file tell the number of components.
struct JpegRecipe {
    int inputSpace = 0;
    int fileSpace = 0;
    Bytes pixel;
    bool progressive = false;
    bool adobeMarker = false;
};
Bytes makeJpeg(const JpegRecipe& recipe);

// ---- pieces -------------------------------------------------------------------------------------

// An Exif block with one entry before the orientation.
Bytes makeExif(bool bigEndian, std::uint16_t orientation);
// A PNG chunk with its length and checksum.
Bytes makeChunk(const std::string& name, const Bytes& data);
// The file with a piece put in at the offset.
Bytes withInserted(const Bytes& file, std::size_t offset, const Bytes& piece);
Bytes concatenated(const Bytes& first, const Bytes& second);

}  // namespace kalim::codec::test
