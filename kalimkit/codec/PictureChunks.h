#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/FileFormat.h"

namespace kalim::codec {

// The type of a PNG's or a WebP's chunk of four letters, as in chunkType("iTXt").
constexpr std::uint32_t chunkType(std::string_view letters) {
    std::uint32_t type = 0;
    for (const char letter : letters)
        type = type << 8U | static_cast<std::uint8_t>(letter);
    return type;
}

// A piece of a picture's file: a PNG's or a WebP's chunk, a JPEG's marker with its segment. It
// looks at the file's bytes.
struct PictureChunk {
    // That of the letters; in a JPEG the marker's second byte, as 0xE1.
    std::uint32_t type = 0;
    ByteSpan data;
    // The data with all that frames them: marker, length, letters, check sum, padding.
    ByteSpan whole;
    // The file ends before the chunk does.
    bool isCut = false;
};

// Goes over the chunks of a JPEG, PNG or WebP file, whatever its bytes are, and takes nothing that
// a file says for granted. A JPEG's last one is its first scan, whose data are all the rest.
class PictureChunks {
public:
    explicit PictureChunks(ByteSpan file);
    // Nothing behind the last.
    std::optional<PictureChunk> next();

private:
    std::optional<PictureChunk> nextOfJpeg();
    std::optional<PictureChunk> nextOfPng();
    std::optional<PictureChunk> nextOfWebp();
    PictureChunk take(std::uint32_t type, std::size_t before, std::size_t length,
                      std::size_t behind);

    FileFormat _format;
    ByteSpan _rest;
};

// The number that stands in up to four bytes.
std::uint32_t bigEndian(ByteSpan bytes);
std::uint32_t littleEndian(ByteSpan bytes);

}  // namespace kalim::codec
