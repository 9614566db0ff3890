#pragma once

namespace kalim::gfx {

struct Size {
    double width = 0;
    double height = 0;

    bool operator==(const Size&) const = default;
    Size operator*(double factor) const { return {width * factor, height * factor}; }
    bool isEmpty() const { return !(width > 0 && height > 0); }
};

// A raster's extent, counted in whole pixels.
struct PixelSize {
    int width = 0;
    int height = 0;

    bool operator==(const PixelSize&) const = default;
    bool isEmpty() const { return width <= 0 || height <= 0; }
};

}  // namespace kalim::gfx
