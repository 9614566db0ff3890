#pragma once

#include <memory>
#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/FileColors.h"

namespace kalim::codec {

// What the pixels become: those of a bitmap, or those of a RawPicture.
enum class Coloring { Srgb, Own };

// The steps that decode() chooses from and that the formats share; messages come without the
// picture's name.
DecodeResult decodeJpeg(ByteSpan bytes, const DecodeLimits& limits,
                        Coloring coloring = Coloring::Srgb);
DecodeResult decodePng(ByteSpan bytes, const DecodeLimits& limits,
                       Coloring coloring = Coloring::Srgb);
DecodeResult decodeWebp(ByteSpan bytes, const DecodeLimits& limits,
                        Coloring coloring = Coloring::Srgb);

// The pixels of all formats that are imported.
DecodeResult decodeImported(ByteSpan bytes, const DecodeLimits& limits);
// Loads what decoding a file takes that begins so, before nothing more can be loaded. What stands
// in the way, or nothing.
std::optional<std::string> prepareImport(ByteSpan start);

// What the header says, whether the profile fits or not.
FileColors jpegColors(ByteSpan bytes);
FileColors pngColors(ByteSpan bytes);
FileColors webpColors(ByteSpan bytes);

// Why a picture of this size is beyond the limits, or nothing.
std::optional<std::string> sizeProblem(std::uint32_t width, std::uint32_t height,
                                       const DecodeLimits& limits);

// As in "1.5 GiB".
std::string memoryText(std::uint64_t bytes);
// Why a picture that takes so many bytes to decode is beyond the limits, or nothing.
std::optional<std::string> memoryProblem(std::uint64_t bytes, const DecodeLimits& limits);
// What decoding says when the system gives it no more.
inline constexpr const char* notEnoughMemory = "there is not enough memory for the picture";

// Where the pixels go in a process that decodes for another one; null for no room.
using PixelPlace = std::shared_ptr<std::uint8_t[]> (*)(std::size_t bytes);
void setPixelPlace(PixelPlace place);

// Makes the result's bitmap, or its error when the size is beyond the limits or the memory. The
// bytes are anything: a format writes every one of them, and decode() drops the bitmap of one that
// fails halfway.
bool allocatePixels(DecodeResult& result, std::uint32_t width, std::uint32_t height,
                    const DecodeLimits& limits);

}  // namespace kalim::codec
