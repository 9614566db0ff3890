#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "kalimkit/codec/AlphaRows.h"
#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Size.h"

namespace kalim::codec {

// The pixels that an encoder writes, row by row: blue, green, red and alpha, which is straight.
class PictureRows {
public:
    virtual ~PictureRows() = default;
    virtual gfx::PixelSize size() const = 0;
    virtual bool isOpaque() const = 0;
    // The three colours of every pixel are alike, and are to be written as one.
    virtual bool isGrey() const = 0;
    virtual void read(int y, std::uint8_t* bgra) const = 0;
};

// Those of a bitmap as it is.
class BitmapRows : public PictureRows {
public:
    // The bitmap must outlive it.
    explicit BitmapRows(const gfx::Bitmap& bitmap)
        : _bitmap(bitmap), _isOpaque(codec::isOpaque(bitmap)) {}

    gfx::PixelSize size() const override { return _bitmap.size(); }
    bool isOpaque() const override { return _isOpaque; }
    bool isGrey() const override { return false; }
    void read(int y, std::uint8_t* bgra) const override {
        if (_isOpaque) {
            std::memcpy(bgra, _bitmap.row(y), _bitmap.stride());
        } else {
            straightenRow(_bitmap.row(y), bgra, static_cast<std::size_t>(_bitmap.width()));
        }
    }

private:
    const gfx::Bitmap& _bitmap;
    bool _isOpaque;
};

}  // namespace kalim::codec
