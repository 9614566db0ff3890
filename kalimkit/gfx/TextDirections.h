#pragma once

#include <cstdint>
#include <vector>

namespace kalim::gfx {

// Which way a paragraph runs: as its first strong letter does, from left to right where it has
// none, or as somebody says.
enum class BaseDirection { FirstLetter, LeftToRight, RightToLeft };

// What the Unicode Bidirectional Algorithm (UAX 9) makes of a paragraph. A level counts how deep
// text of one direction lies within text of the other; an even one runs from left to right, an odd
// one from right to left.
struct TextDirections {
    struct Grapheme {
        // Of its first character, before the paragraph is broken into lines.
        std::uint8_t level = 0;
        // White space, or a format character, which goes with the paragraph where a line ends
        // behind it.
        bool isBlank = false;

        bool operator==(const Grapheme&) const = default;
    };

    bool isRightToLeft() const { return baseLevel % 2 != 0; }
    // Nothing need be turned around.
    bool isPlain() const { return graphemes.empty(); }

    // Of the paragraph itself.
    std::uint8_t baseLevel = 0;
    // Without any where everything is of level 0.
    std::vector<Grapheme> graphemes;
};

}  // namespace kalim::gfx
