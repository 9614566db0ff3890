#pragma once

#include <cstddef>
#include <optional>

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

// Packs and unpacks as zlib does. Nothing comes of bytes that are damaged, and of ones that unpack
// to more than `maxBytes`.
Bytes deflated(ByteSpan bytes);
std::optional<Bytes> inflated(ByteSpan packed, std::size_t maxBytes);

}  // namespace kalim::codec
