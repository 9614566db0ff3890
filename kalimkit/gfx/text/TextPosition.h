#pragma once

#include <cstddef>

namespace kalim::gfx {

// A place of the caret. Where the width broke a line, one byte offset is both the end of a line and
// the start of the next: an upstream position is at the end, any other at the start.
struct TextPosition {
    std::size_t offset = 0;
    bool isUpstream = false;

    bool operator==(const TextPosition&) const = default;
};

}  // namespace kalim::gfx
