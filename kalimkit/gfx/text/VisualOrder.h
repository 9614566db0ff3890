#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace kalim::gfx {

// In which order the graphemes of a line with these levels are seen from left to right: rule L2 of
// UAX 9.
std::vector<std::size_t> visualOrder(std::span<const std::uint8_t> levels);

}  // namespace kalim::gfx
