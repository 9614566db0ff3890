#pragma once

#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

// What a key of EditorKeys is called where the user reads it, in the environment's language:
// "ctrl+shift+z" is "Ctrl+Shift+Z". Empty for an empty one.
KALIM_API std::string keyName(std::string_view key);

}  // namespace kalim::ui
