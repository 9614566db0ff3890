#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace kalim::ui {

// A modal question or notice of the platform. An empty title means that none is shown.
struct Alert {
    std::string title;
    std::string message;
    std::vector<std::string> buttons;
    // Called once with the index of the tapped button; may be empty.
    std::function<void(std::size_t button)> completion;
};

}  // namespace kalim::ui
