#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/DecodeResult.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// What a picture may ask for. Its header is held against these before any pixel is allocated.
struct DecodeLimits {
    // The longer side has at most this many pixels.
    int maxSide = 32767;
    std::int64_t maxPixels = std::int64_t{1} << 28;
    // A file has at most this many bytes.
    std::uint64_t maxFileBytes = std::uint64_t{1} << 30;
    // Bytes that decoding may take, the pixels among them.
    std::uint64_t maxMemory = std::uint64_t{3} << 29;
    // Of the processor; of the clock it may be three times that. For decodeSandboxed() alone.
    double maxSeconds = 10;
};

// Reads a picture, of an animation the first frame and of a file of several the main one, and turns
// the colours of an embedded profile into sRGB: JPEG, PNG, WebP, and of their pixels alone GIF,
// BMP, PPM and its kin (P1 to P6), and TIFF, AVIF and HEIC where the system has their libraries.
// What is decoded is complete: data that are cut off or damaged are an error. `name` stands at the
// front of every message, usually the path.
KALIM_API DecodeResult decode(ByteSpan bytes, const std::string& name,
                              const DecodeLimits& limits = {});
// decode() or what does its work elsewhere, as decodeSandboxed().
using Decoder = DecodeResult (*)(ByteSpan bytes, const std::string& name,
                                 const DecodeLimits& limits);
// Whether these first bytes, 16 of them, may be those of a picture that decode() reads.
KALIM_API bool mayBePicture(ByteSpan start);
// Fills `bytes` with a file for decode(). Of one that is no picture only the first bytes are read,
// for which decode() says what is wrong. Answers with nothing, or with a message that names the
// path and the reason.
KALIM_API std::optional<std::string> readPictureFile(const std::string& path, Bytes& bytes,
                                                     const DecodeLimits& limits = {});
KALIM_API DecodeResult decodeFile(const std::string& path, const DecodeLimits& limits = {});

}  // namespace kalim::codec
