#pragma once

#include <algorithm>
#include <cmath>

#include "kalimkit/gfx/Font.h"

namespace kalim::gfx {

// A font as the page takes it. The font must outlive it.
struct HtmlFont {
    explicit HtmlFont(const Font& font)
        : family(font.family.data()),
          familyLength(static_cast<int>(font.family.size())),
          size(std::isfinite(font.size) ? std::clamp(font.size, 0.0, largestSize) : 0),
          style((font.bold ? 1 : 0) | (font.italic ? 2 : 0)) {}

    static constexpr double largestSize = 10000;

    const char* family;
    int familyLength;
    double size;
    int style;
};

}  // namespace kalim::gfx
