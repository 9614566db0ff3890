#pragma once

#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// The SHA-256 of the bytes, as 64 lower-case hexadecimal digits.
KALIM_API std::string sha256(std::string_view bytes);

}  // namespace kalim
