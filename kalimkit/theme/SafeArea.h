#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/environment/EdgeInsets.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

// What the screen says, and where it says nothing, 44 points at the top and 34 at the bottom of a
// tall phone, see isTallPhone(). No inset is below zero.
KALIM_API ui::EdgeInsets safeAreaInsets(const ui::Screen& screen);
// Yields those of the current environment's screen, in points.
KALIM_API ui::EdgeInsets safeAreaInsets();

}  // namespace kalim
