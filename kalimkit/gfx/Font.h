#pragma once

#include <string>

namespace kalim::gfx {

// A request for a font. An empty family is the host's system font. Sizes are points.
struct Font {
    std::string family;
    double size = 14;
    bool bold = false;
    bool italic = false;

    bool operator==(const Font&) const = default;
};

// Distances from the baseline in points, none negative; `leading` is the gap between lines.
struct LineMetrics {
    double ascent = 0;
    double descent = 0;
    double leading = 0;

    bool operator==(const LineMetrics&) const = default;
};

}  // namespace kalim::gfx
