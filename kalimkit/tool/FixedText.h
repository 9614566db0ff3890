#pragma once

#include <string>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// A number with that many decimals and a point before them, whatever the host's locale writes
// there.
KALIM_API std::string fixedText(double value, int decimals);

}  // namespace kalim
