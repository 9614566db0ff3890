#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/DecodeSteps.h"

namespace kalim::codec {

// The readers of imported formats, in what they share with the other ones: messages come without
// the picture's name.
DecodeResult readPnm(ByteSpan bytes, const DecodeLimits& limits);
DecodeResult readBmp(ByteSpan bytes, const DecodeLimits& limits);
DecodeResult readGif(ByteSpan bytes, const DecodeLimits& limits);
DecodeResult readTiff(ByteSpan bytes, const DecodeLimits& limits);
DecodeResult readAvif(ByteSpan bytes, const DecodeLimits& limits);
DecodeResult readHeic(ByteSpan bytes, const DecodeLimits& limits);

// What stands in the way of such files: which package has the library that is not there.
std::optional<std::string> loadTiff();
std::optional<std::string> loadAvif();
std::optional<std::string> loadHeic();

DecodeResult importFailure(std::string message);
// A number of up to four bytes, the lowest first; 0 beyond the end.
std::uint32_t littleEndian(ByteSpan bytes, std::size_t offset, std::size_t count);
// Turns straight BGRA, as a file's profile describes it, into what a bitmap holds, and notes the
// profile's name.
void finishImport(DecodeResult& result, ByteSpan profile, bool hasAlpha);

}  // namespace kalim::codec
