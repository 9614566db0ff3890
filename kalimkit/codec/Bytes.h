#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kalim::codec {

// Bytes own a whole file in memory, a ByteSpan only looks at one.
using Bytes = std::vector<std::uint8_t>;
using ByteSpan = std::span<const std::uint8_t>;

}  // namespace kalim::codec
