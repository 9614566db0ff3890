#include "kalimkit/codec/DrawnPixels.h"

#include <algorithm>
#include <cstring>

namespace kalim::codec {

namespace {

constexpr int tileSide = 8;

gfx::PixelRect grownToCells(const gfx::PixelRect& rect, gfx::PixelSize cell) {
    const auto before = [](int at, int size) { return at - (at % size + size) % size; };
    const int x = before(rect.x, cell.width);
    const int y = before(rect.y, cell.height);
    const int right = before(rect.x + rect.width + cell.width - 1, cell.width);
    const int bottom = before(rect.y + rect.height + cell.height - 1, cell.height);
    return {x, y, right - x, bottom - y};
}

}  // namespace

DrawnPixels::DrawnPixels(const JpegPlacement& placement, const SavingSource& source,
                         ByteSpan touched)
    : _size(placement.size),
      _tileCount{(_size.width + tileSide - 1) / tileSide, (_size.height + tileSide - 1) / tileSide},
      _drawn(touched),
      _tiles(static_cast<std::size_t>(_tileCount.width) *
             static_cast<std::size_t>(_tileCount.height)) {
    const gfx::PixelRect everything{0, 0, _size.width, _size.height};
    if (placement.toResult != PixelMap{} || placement.covered != everything ||
        !source.hidden.empty() || touched.size() != index(0, _size.height)) {
        copy(placement.toResult, touched);
        addBeyond(placement.covered);
        for (const gfx::PixelRect& hidden : source.hidden) {
            if (hidden.isEmpty()) continue;
            addRect(grownToCells(placement.fromUpright.apply(hidden), placement.cell));
        }
    }
    findTiles();
    // What is cut off must not stay in the coefficients of the last cells.
    const int lastColumn = (_size.width - 1) / placement.cell.width * placement.cell.width;
    const int lastRow = (_size.height - 1) / placement.cell.height * placement.cell.height;
    if (placement.cutsRight) addTiles({lastColumn, 0, placement.cell.width, _size.height});
    if (placement.cutsBottom) addTiles({0, lastRow, _size.width, placement.cell.height});
}

void DrawnPixels::copy(const PixelMap& toResult, ByteSpan touched) {
    _copy.resize(index(0, _size.height));
    _drawn = _copy;
    if (touched.size() != _copy.size()) return;
    if (toResult == PixelMap{}) {
        std::ranges::copy(touched, _copy.begin());
        return;
    }
    const PixelMap toStored = toResult.inverse();
    const int width = toResult.exchangesSides() ? _size.height : _size.width;
    for (std::size_t i = 0; i < touched.size(); ++i) {
        if (touched[i] == 0) continue;
        const int x = static_cast<int>(i % static_cast<std::size_t>(width));
        const int y = static_cast<int>(i / static_cast<std::size_t>(width));
        _copy[index(toStored.pixelX(x, y), toStored.pixelY(x, y))] = 1;
    }
}

void DrawnPixels::addBeyond(const gfx::PixelRect& covered) {
    const int right = covered.x + covered.width;
    const int bottom = covered.y + covered.height;
    addRect({0, 0, _size.width, covered.y});
    addRect({0, bottom, _size.width, _size.height - bottom});
    addRect({0, covered.y, covered.x, covered.height});
    addRect({right, covered.y, _size.width - right, covered.height});
}

void DrawnPixels::addRect(gfx::PixelRect rect) {
    rect = intersection(rect, {0, 0, _size.width, _size.height});
    if (rect.isEmpty()) return;
    for (int y = rect.y; y < rect.y + rect.height; ++y)
        std::memset(&_copy[index(rect.x, y)], 1, static_cast<std::size_t>(rect.width));
}

void DrawnPixels::findTiles() {
    for (int y = 0; y < _size.height; ++y) {
        const std::uint8_t* const row = at(0, y);
        std::uint8_t* const tiles = &_tiles[static_cast<std::size_t>(y / tileSide) *
                                            static_cast<std::size_t>(_tileCount.width)];
        for (int tile = 0; tile < _tileCount.width; ++tile) {
            const int x = tile * tileSide;
            std::uint64_t pixels = 0;
            if (x + tileSide <= _size.width) {
                std::memcpy(&pixels, row + x, sizeof pixels);
            } else {
                std::memcpy(&pixels, row + x, static_cast<std::size_t>(_size.width - x));
            }
            if (pixels != 0) tiles[tile] = 1;
        }
    }
}

void DrawnPixels::addTiles(gfx::PixelRect rect) {
    rect = intersection(rect, {0, 0, _size.width, _size.height});
    for (int y = rect.y / tileSide; y * tileSide < rect.y + rect.height; ++y) {
        for (int x = rect.x / tileSide; x * tileSide < rect.x + rect.width; ++x)
            _tiles[static_cast<std::size_t>(y * _tileCount.width + x)] = 1;
    }
}

bool DrawnPixels::meets(const gfx::PixelRect& rect) const {
    const int right = std::min((rect.x + rect.width) / tileSide, _tileCount.width);
    const int bottom = std::min((rect.y + rect.height) / tileSide, _tileCount.height);
    for (int y = rect.y / tileSide; y < bottom; ++y) {
        for (int x = rect.x / tileSide; x < right; ++x) {
            if (_tiles[static_cast<std::size_t>(y * _tileCount.width + x)] != 0) return true;
        }
    }
    return false;
}

bool DrawnPixels::coverAll(const gfx::PixelRect& rect) const {
    const gfx::PixelRect inside = intersection(rect, {0, 0, _size.width, _size.height});
    for (int y = inside.y; y < inside.y + inside.height; ++y) {
        const std::uint8_t* const row = at(inside.x, y);
        if (std::find(row, row + inside.width, 0) != row + inside.width) return false;
    }
    return true;
}

bool DrawnPixels::haveColour(const StoredResult& result) const {
    for (int y = 0; y < _size.height; ++y) {
        for (int x = 0; x < _size.width; ++x) {
            if (*at(x, y) != 0 && result.hasColour(x, y)) return true;
        }
    }
    return false;
}

}  // namespace kalim::codec
