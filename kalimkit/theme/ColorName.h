#pragma once

#include <string>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"

namespace kalim {

// What people call the colour, in the user's language: the nearest of black, grey, white and seven
// hues. Empty for null.
KALIM_API std::string colorName(const gfx::ColorRef& color);

}  // namespace kalim
