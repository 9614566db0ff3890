#pragma once

#include <string>
#include <vector>

namespace kalim::ui {

// What one or more keys do, in the user's language. Keys have the names of EditorKeys.
struct KeyRow {
    std::string text;
    std::vector<std::string> keys;
};

// Keys that belong together, for a list of all of them.
struct KeyGroup {
    std::string title;
    std::vector<KeyRow> rows;
};

}  // namespace kalim::ui
