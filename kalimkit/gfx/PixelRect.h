#pragma once

#include <vector>

namespace kalim::gfx {

// A part of a raster, whole pixels from its top left corner.
struct PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    bool operator==(const PixelRect&) const = default;
    bool isEmpty() const { return width <= 0 || height <= 0; }
};

using PixelRects = std::vector<PixelRect>;

}  // namespace kalim::gfx
