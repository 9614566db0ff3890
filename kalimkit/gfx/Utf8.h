#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim::gfx {

constexpr char32_t replacementCharacter = 0xFFFD;

// One code point of a text and the number of bytes it took there.
struct CodePoint {
    char32_t value = replacementCharacter;
    std::size_t byteCount = 1;

    bool operator==(const CodePoint&) const = default;
};

// Reads the code point that starts at the byte offset, which must lie inside the text. Bytes that
// are no UTF-8 yield the replacement character, one for each maximal part of a sequence, as the
// Unicode standard recommends (chapter 3, U+FFFD substitution of maximal subparts) and browsers do.
KALIM_API CodePoint decodeUtf8(std::string_view text, std::size_t offset);

// Appends a code point; what is none (a surrogate, a value above 10FFFF) becomes the replacement
// character.
KALIM_API void appendUtf8(std::string& text, char32_t codePoint);

}  // namespace kalim::gfx
