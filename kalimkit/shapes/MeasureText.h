#pragma once

#include <string>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// The environment's text for a measurement's key ("Length", "Width", ...), looked up once and kept
// for the life of the process; the key itself without an environment.
KALIM_API std::string measureLabel(const std::string& key);

// Forgets the kept labels, for tests.
KALIM_API void resetMeasureLabels();

// Two decimals, as every measurement shows its values.
KALIM_API std::string measureValue(double value);

}  // namespace kalim
