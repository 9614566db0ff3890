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
    // `touched` is in the result's order.
    DrawnPixels(const JpegPlacement& placement, const SavingSource& source, ByteSpan touched);

    bool isDrawn(int x, int y) const { return _drawn[index(x, y)] != 0; }
    // Whether a block has to be made anew that shows these pixels, whole tiles of 8 x 8.
    bool meets(const gfx::PixelRect& rect) const;
    bool haveColour(const StoredResult& result) const;

private:
    std::size_t index(int x, int y) const {
        return static_cast<std::size_t>(y) * static_cast<std::size_t>(_size.width) +
               static_cast<std::size_t>(x);
    }
    void addTouched(const PixelMap& toResult, ByteSpan touched);
    void addBeyond(const gfx::PixelRect& covered);
    void addRect(gfx::PixelRect rect);
    void findTiles();
    void addTiles(gfx::PixelRect rect);

    gfx::PixelSize _size;
    gfx::PixelSize _tileCount;
    std::vector<std::uint8_t> _drawn;
    std::vector<std::uint8_t> _tiles;
};

}  // namespace kalim::codec
