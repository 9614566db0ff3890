#pragma once

#include <string>
#include <string_view>

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

// Some programs keep a block of data in a PNG's text: a line with its kind, one with its length,
// then in hexadecimal digits what it holds. Unwrapping ends at what is no digit.
std::string wrappedBlock(std::string_view kind, ByteSpan block);
Bytes unwrappedBlock(std::string_view text);

}  // namespace kalim::codec
