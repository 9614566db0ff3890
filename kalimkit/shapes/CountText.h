#pragma once

#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// A number from 1 on as a counter shows it: "1" 27, "a" aa, "A" AA, "i" xxvii. Other numbers, and
// those beyond 3999 for "i", are digits.
KALIM_API std::string countText(int number, std::string_view style);

}  // namespace kalim
