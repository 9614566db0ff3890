#pragma once

#include <cstddef>
#include <cstdint>

#include "kalimkit/codec/PixelMap.h"
#include "kalimkit/gfx/Bitmap.h"

namespace kalim::codec {

// A result as the new file stores it, pixel by pixel.
class StoredResult {
public:
    // The bitmap is looked at only.
    StoredResult(const gfx::Bitmap& result, const PixelMap& toResult);

    // Blue, green, red, alpha, premultiplied.
    const std::uint8_t* at(int x, int y) const { return _first + x * _across + y * _down; }
    // Bytes from a pixel to the one at its right.
    std::ptrdiff_t step() const { return _across; }
    // Its blue, green and red are not all the same.
    bool hasColour(int x, int y) const {
        const std::uint8_t* const pixel = at(x, y);
        return pixel[0] != pixel[1] || pixel[1] != pixel[2];
    }

private:
    const std::uint8_t* _first;
    // Bytes from a stored pixel to the next one.
    std::ptrdiff_t _across;
    std::ptrdiff_t _down;
};

}  // namespace kalim::codec
