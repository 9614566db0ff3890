#pragma once

#include <optional>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/theme/IconTable.h"

namespace kalim {

// Draws an icon with its top-left corner at the origin, in points. With a tint all of it has that
// colour, as opaque as the icon says at each place.
void drawIcon(gfx::Context& context, const Icon& icon,
              const std::optional<gfx::Color>& tint = std::nullopt);

}  // namespace kalim
