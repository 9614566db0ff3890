#pragma once

#include <SDL.h>

#include <string>

namespace kalim {

// A key with what is held down beside it, such as "ctrl+shift+z", "escape" or "["; empty for keys
// that nobody asks for. Where the keyboard's layout has none of the known names on a key, the
// key's place on a US keyboard counts, so that digits and commands work everywhere.
std::string nameOfKey(const SDL_Keysym& key);

}  // namespace kalim
