#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "kalimkit/gfx/TextDirections.h"

namespace kalim::gfx {

// The directions of a paragraph of which the graphemes begin at these bytes, without explicit
// embeddings and without pairs of brackets. Letters are told by the blocks that Unicode keeps for
// scripts that run from right to left.
TextDirections htmlDirections(std::string_view paragraph, std::span<const std::size_t> graphemes,
                              BaseDirection direction);

}  // namespace kalim::gfx
