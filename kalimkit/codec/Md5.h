#pragma once

#include <string>

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

// The check sum of RFC 1321 in 32 capital hexadecimal digits, by which XMP names a continuation. It
// protects nothing.
std::string md5(ByteSpan bytes);

}  // namespace kalim::codec
