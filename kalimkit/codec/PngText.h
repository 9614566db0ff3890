#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

struct PictureChunk;

// A text that a PNG file carries under a keyword.
struct PngText {
    std::string keyword;
    std::string text;
    // Why the text cannot be had; half a sentence without the file's name.
    std::optional<std::string> error;
};

// Reads a chunk of any of the kinds of texts, tEXt, zTXt and iTXt; nothing for other chunks. A text
// that unpacks to more than `maxBytes` counts as damaged, and so does one whose check sum is wrong.
std::optional<PngText> readPngText(const PictureChunk& chunk, std::size_t maxBytes);

// The first international text (iTXt) of that keyword, damaged or not; nothing where there is none
// and for a file that is no PNG.
KALIM_API std::optional<PngText> findPngText(ByteSpan file, std::string_view keyword,
                                             std::size_t maxBytes);

// Puts a text in UTF-8 before the end of a PNG file, packed and of no language. Answers with
// nothing or with what stands in the way: no PNG file, or a text that is too long for the format.
KALIM_API std::optional<std::string> addPngText(Bytes& file, std::string_view keyword,
                                                std::string_view text);

}  // namespace kalim::codec
