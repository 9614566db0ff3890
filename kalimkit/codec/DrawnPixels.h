#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/JpegPlacement.h"
#include "kalimkit/codec/StoredResult.h"

namespace kalim::codec {

// Which pixels of a new file are drawn and which are the source's, and which blocks that concerns.
class DrawnPixels {
public:
    // `touched` is in the result's order, and must live as long as this.
    DrawnPixels(const JpegPlacement& placement, const SavingSource& source, ByteSpan touched);

    // A byte for each pixel from x on, 0 where it is the source's.
    const std::uint8_t* at(int x, int y) const { return _drawn.data() + index(x, y); }
    // Whether a block has to be made anew that shows these pixels, whole tiles of 8 x 8.
    bool meets(const gfx::PixelRect& rect) const;
    // Whether none of these pixels is the source's.
    bool coverAll(const gfx::PixelRect& rect) const;
    bool haveColour(const StoredResult& result) const;

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(_size.width) +
               static_cast<std::size_t>(x);
    }
    void addBeyond(const gfx::PixelRect& covered);
    void addRect(gfx::PixelRect rect);
    void copy(const PixelMap& toResult, ByteSpan touched);
    void findTiles();
    void addTiles(gfx::PixelRect rect);

    gfx::PixelSize _size;
    gfx::PixelSize _tileCount;
    // Looks at what was handed in if that says everything, else at an own copy.
    ByteSpan _drawn;
    Bytes _copy;
    std::vector<std::uint8_t> _tiles;
};

}  // namespace kalim::codec
