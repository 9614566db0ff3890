#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace kalim::gfx {

// The direction in which texts run, after the Unicode Bidirectional Algorithm (UAX 9) without its
// explicit embeddings and without pairs of brackets. Letters are told by the blocks that Unicode
// keeps for scripts that run from right to left. A level counts how deep text of one direction is
// within text of the other; an even one runs from left to right, an odd one from right to left.

// Whether any of it runs from right to left; of a text that does not, nothing else need be asked.
bool hasRightToLeft(std::string_view text);

// One level for each of the graphemes, which begin at these bytes of a paragraph; `baseLevel` is
// that of the first letter, 0 where there is none.
struct Levels {
    std::uint8_t baseLevel = 0;
    std::vector<std::uint8_t> ofGraphemes;
};
Levels directionLevels(std::string_view paragraph, std::span<const std::size_t> begins);

// In which order the graphemes of a line with these levels are seen from left to right.
std::vector<std::size_t> visualOrder(std::span<const std::uint8_t> levels);

}  // namespace kalim::gfx
