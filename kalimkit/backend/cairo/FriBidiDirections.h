#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "kalimkit/gfx/TextDirections.h"

namespace kalim::gfx {

// The directions of a paragraph of which the graphemes begin at these bytes, by FriBidi.
TextDirections friBidiDirections(std::string_view paragraph, std::span<const std::size_t> graphemes,
                                 BaseDirection base);

}  // namespace kalim::gfx
