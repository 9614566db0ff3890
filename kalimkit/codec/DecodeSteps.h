#pragma once

#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/Decode.h"

namespace kalim::codec {

// The steps that decode() chooses from and that the formats share; messages come without the
// picture's name.
DecodeResult decodeJpeg(ByteSpan bytes, const DecodeLimits& limits);
DecodeResult decodePng(ByteSpan bytes, const DecodeLimits& limits);
DecodeResult decodeWebp(ByteSpan bytes, const DecodeLimits& limits);

// Why a picture of this size is beyond the limits, or nothing.
std::optional<std::string> sizeProblem(std::uint32_t width, std::uint32_t height,
                                       const DecodeLimits& limits);

// Makes the result's bitmap, or its error when the size is beyond the limits or the memory. The
// bytes are anything: a format writes every one of them, and decode() drops the bitmap of one that
// fails halfway.
bool allocatePixels(DecodeResult& result, std::uint32_t width, std::uint32_t height,
                    const DecodeLimits& limits);

}  // namespace kalim::codec
