#pragma once

#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// A text as a terminal may be given it: the name of a file can hold anything, also what would move
// the cursor or hide what was said before. Control characters and bytes that are no UTF-8 stand as
// "\x1B", characters that turn the direction of what follows as "\u202E".
KALIM_API std::string terminalText(std::string_view text);

}  // namespace kalim::codec
