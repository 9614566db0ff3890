#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

// Whether a file has these bytes there, as signatures are; not where it ends before.
inline bool hasAt(ByteSpan bytes, std::size_t offset, std::string_view expected) {
    return bytes.size() >= offset + expected.size() &&
           std::ranges::equal(bytes.subspan(offset, expected.size()), expected, {}, {},
                              [](char letter) { return static_cast<std::uint8_t>(letter); });
}

}  // namespace kalim::codec
