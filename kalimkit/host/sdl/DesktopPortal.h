#pragma once

#include <optional>

#include "kalimkit/ui/environment/Appearance.h"

namespace kalim {

// What the desktop's portal says that the user prefers; nothing where there is none, or no library
// that speaks with it, or where it does not answer at once.
std::optional<ui::Appearance> portalAppearance();

}  // namespace kalim
