#pragma once

#include <cstddef>

#include "kalimkit/gfx/Point.h"

namespace kalim::gfx {

// One laid-out line. Lengths are points, places are seen from the layout's top-left corner.
struct TextLine {
    // These bytes of the text include the spaces that hang at its end, but not the line feed.
    std::size_t begin = 0;
    std::size_t end = 0;
    // Where its baseline starts.
    Point origin;
    // Typographic. Spaces at a break that the width made do not count; those at the end of a
    // paragraph do as far as they lie within the limit.
    double width = 0;
    double ascent = 0;
    double descent = 0;
    double leading = 0;

    double top() const { return origin.y - ascent; }
    double bottom() const { return origin.y + descent; }

    bool operator==(const TextLine&) const = default;
};

}  // namespace kalim::gfx
