#pragma once

#include <cstdint>
#include <string>

#include "kalimkit/codec/Decode.h"

namespace kalim::codec::test {

// ---- what comes of a file

// "none" without an error.
std::string errorOf(const Bytes& file, const DecodeLimits& limits = {});
// Blue, green, red, alpha of every pixel; an error fails the test.
Bytes pixelsOf(const Bytes& file);
// A file that has lost its end says so wherever it was cut before `wholeSize`, by default its size.
void expectErrorForEveryCut(const Bytes& file, const std::string& format,
                            std::size_t wholeSize = std::string::npos);
// No byte of the file may lead out of bounds, whatever it is changed to.
void expectPictureOrErrorForEveryDamage(const Bytes& file, std::size_t first);

// ---- files that the codec itself never writes

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
    Bytes profile{};
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
    // More than one for a progressive grey picture of so many scans, up to 127.
    int scanCount = 1;
    // One scan for each of three colours.
    bool coloursApart = false;
    Bytes profile{};
};
Bytes makeJpeg(const JpegRecipe& recipe);

// A WebP file of the given chunks.
Bytes makeWebp(const Bytes& chunks);

// ---- colour profiles

// sRGB but for red and green, which change places.
Bytes makeSwappingProfile();
Bytes makeSrgbProfile();
// Grey in proportion to light.
Bytes makeLinearGreyProfile();
// Without black ink every mixture is the grey of lightness 50, with it black.
Bytes makeInkProfile();

// ---- pieces

// An Exif block with one entry before the orientation.
Bytes makeExif(bool bigEndian, std::uint16_t orientation);
// A PNG chunk with its length and checksum.
Bytes makeChunk(const std::string& name, const Bytes& data);
Bytes makeRiffChunk(const std::string& name, const Bytes& data);
// The WebP header of flags and canvas size that comes before any other chunk.
Bytes makeCanvasChunk(std::uint8_t flags, std::uint32_t width, std::uint32_t height);
// The pixels as WebP stores them without loss.
Bytes makeLosslessChunk(const gfx::Bitmap& bitmap);
// The file with a piece put in at the offset.
Bytes withInserted(const Bytes& file, std::size_t offset, const Bytes& piece);
Bytes concatenated(const Bytes& first, const Bytes& second);

}  // namespace kalim::codec::test
