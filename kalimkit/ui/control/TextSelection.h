#pragma once

#include <algorithm>
#include <cstddef>

#include "kalimkit/gfx/text/TextRange.h"

namespace kalim::ui {

// What is selected in a text, in bytes. The anchor stays where the selection was begun, the head
// moves; where both are equal there is but a caret.
struct TextSelection {
    std::size_t anchor = 0;
    std::size_t head = 0;

    std::size_t begin() const { return std::min(anchor, head); }
    std::size_t end() const { return std::max(anchor, head); }
    gfx::TextRange range() const { return {begin(), end()}; }
    bool isEmpty() const { return anchor == head; }

    bool operator==(const TextSelection&) const = default;
};

}  // namespace kalim::ui
