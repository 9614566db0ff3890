#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Size.h"

namespace kalim::gfx {

// Pixels in memory: 8 bits per component, byte order blue, green, red, alpha, premultiplied, row 0
// at the top, rows packed without padding. The colours are sRGB.
class KALIM_API Bitmap {
public:
    Bitmap() = default;
    Bitmap(const Bitmap& other);
    // The other one is empty afterwards.
    Bitmap(Bitmap&& other) noexcept;
    Bitmap& operator=(Bitmap other) noexcept;
    // All bytes zero: transparent black. A side of zero or below gives an empty bitmap.
    Bitmap(int width, int height);
    // Its bytes are anything, for somebody who is about to write every one of them.
    static Bitmap unwritten(int width, int height);
    // Takes pixels that somebody else has made room for, all of stride() times the height, and lets
    // go of them with the last owner.
    static Bitmap adopted(int width, int height, std::shared_ptr<std::uint8_t[]> bytes);

    int width() const { return _size.width; }
    int height() const { return _size.height; }
    PixelSize size() const { return _size; }
    bool isEmpty() const { return _size.isEmpty(); }
    // Counts the bytes from one row to the next.
    std::size_t stride() const { return static_cast<std::size_t>(_size.width) * 4; }
    std::size_t byteCount() const {
        return isEmpty() ? 0 : stride() * static_cast<std::size_t>(_size.height);
    }

    std::uint8_t* row(int y) { return _bytes.get() + stride() * static_cast<std::size_t>(y); }
    const std::uint8_t* row(int y) const {
        return _bytes.get() + stride() * static_cast<std::size_t>(y);
    }
    std::uint8_t* data() { return _bytes.get(); }
    const std::uint8_t* data() const { return _bytes.get(); }

    // One pixel with straight components. The position must lie inside.
    Color colorAt(int x, int y) const;
    void setColorAt(int x, int y, const Color& color);

    bool operator==(const Bitmap& other) const;

private:
    PixelSize _size;
    // Of this bitmap alone; shared for what is done at its end.
    std::shared_ptr<std::uint8_t[]> _bytes;
};

using BitmapRef = std::shared_ptr<const Bitmap>;

}  // namespace kalim::gfx
