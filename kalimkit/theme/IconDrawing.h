#pragma once

#include "kalimkit/gfx/Context.h"
#include "kalimkit/theme/IconTable.h"

namespace kalim {

// Draws an icon with its top-left corner at the origin, in points.
void drawIcon(gfx::Context& context, const Icon& icon);

}  // namespace kalim
