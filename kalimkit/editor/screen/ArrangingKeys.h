#pragma once

#include <span>
#include <string_view>

namespace kalim {

class CanvasArrangement;

// A key for shapes that there are, and what is told of it where all keys are listed.
struct ArrangingKey {
    std::string_view key;
    // Whether there was anything to do.
    bool (*run)(CanvasArrangement& shapes);
    std::string_view text;
    // While it is held down, again and again.
    bool repeats = false;
};

std::span<const ArrangingKey> arrangingKeys();

}  // namespace kalim
