#pragma once

#include <cstddef>

namespace kalim::gfx {

// Holds bytes of a text from `begin` up to, not including, `end`; never the other way round.
struct TextRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    std::size_t length() const { return end - begin; }
    bool isEmpty() const { return begin == end; }

    bool operator==(const TextRange&) const = default;
};

}  // namespace kalim::gfx
