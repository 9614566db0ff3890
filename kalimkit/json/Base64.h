#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Bytes as base64 in one line, padded, and back. Nothing where the text has other characters, or
// not as many as whole bytes need.
KALIM_API std::string base64(std::string_view bytes);
KALIM_API std::optional<std::string> fromBase64(std::string_view text);

}  // namespace kalim
