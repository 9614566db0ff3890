#pragma once

#include <optional>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

// A key that is pressed, with what is held down beside it.
struct KeyStroke {
    enum class Key { Left, Right, Up, Down, Home, End, Backspace, Delete, Enter, Tab, Letter };

    Key key = Key::Enter;
    // Lower case; 0 unless the key is a letter.
    char letter = 0;
    bool shift = false;
    bool ctrl = false;
    bool alt = false;

    bool operator==(const KeyStroke&) const = default;

    // Reads "shift+ctrl+left": the modifiers shift, ctrl and alt in any order, then left, right,
    // up, down, home, end, backspace, delete, enter, tab or a letter from a to z. Nothing for any
    // other text.
    KALIM_API static std::optional<KeyStroke> parse(std::string_view text);
};

}  // namespace kalim::ui
