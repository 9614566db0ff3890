#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

// Whether the screen is a phone's that keeps room at its top and bottom edges: a native height of
// 2436, 1792 or 2688 pixels.
KALIM_API bool isTallPhone(const ui::Screen& screen);

}  // namespace kalim
