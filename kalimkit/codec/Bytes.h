#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace kalim::codec {

// A whole file in memory, owned or looked at.
using Bytes = std::vector<std::uint8_t>;
using ByteSpan = std::span<const std::uint8_t>;

}  // namespace kalim::codec
