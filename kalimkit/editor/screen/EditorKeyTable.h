#pragma once

#include <span>
#include <string_view>

#include "kalimkit/editor/screen/EditorKeys.h"

namespace kalim {

// A key and what it does.
struct EditorKeys::Command {
    std::string_view key;
    bool (EditorKeys::*run)();
    // While it is held down, again and again.
    bool repeats = false;
};

}  // namespace kalim
