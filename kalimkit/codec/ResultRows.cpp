#include "kalimkit/codec/ResultRows.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace kalim::codec {

namespace {

gfx::PixelRect wholeOf(const gfx::Bitmap& bitmap) {
    return {0, 0, bitmap.width(), bitmap.height()};
}

// Pixels of a bitmap that a row of another one walks over.
struct Walk {
    Walk(const gfx::Bitmap& bitmap, const PixelMap& map, int x, int y)
        : at(bitmap.row(map.pixelY(x, y)) + 4 * static_cast<std::ptrdiff_t>(map.pixelX(x, y))),
          step(4 * (std::ptrdiff_t{map.yx} * bitmap.width() + map.xx)) {}

    const std::uint8_t* at;
    std::ptrdiff_t step;
};

}  // namespace

ResultRows::ResultRows(const gfx::Bitmap& result, const SavingSource& source)
    : _result(result), _pixels(source.pixels), _touched(static_cast<std::size_t>(result.width())) {
    if (!_pixels) return;
    gfx::PixelSize unturned = result.size();
    if (source.quarterTurns % 2 != 0) std::swap(unturned.width, unturned.height);
    _toUpright = PixelMap::turned(source.quarterTurns, unturned)
                     .inverse()
                     .then(PixelMap::moved(source.part.x - source.x, source.part.y - source.y));
    const PixelMap fromUpright = _toUpright.inverse();
    const auto placed = [&](const gfx::PixelRect& rect) {
        const gfx::PixelRect shown = intersection(rect, source.part);
        return intersection(fromUpright.apply(intersection(shown, wholeOf(*_pixels))),
                            wholeOf(result));
    };
    _placed = placed(source.part);
    for (const gfx::PixelRect& hidden : source.hidden) {
        if (!placed(hidden).isEmpty()) _hidden.push_back(placed(hidden));
    }
}

void ResultRows::setRaw(const RawPicture& raw) {
    gfx::PixelSize seen = raw.bitmap.size();
    if (gfx::exchangesSides(raw.orientation)) std::swap(seen.width, seen.height);
    if (!_pixels || seen != _pixels->size()) return;
    _raw = &raw.bitmap;
    _toRaw = _toUpright.then(PixelMap::upright(raw.orientation, seen).inverse());
}

bool ResultRows::isOpaque() const {
    if (!_isOpaque) _isOpaque = codec::isOpaque(_result);
    return *_isOpaque;
}

bool ResultRows::isDrawnInGrey() const {
    for (int y = 0; y < _result.height(); ++y) {
        markTouched(y, _touched.data());
        const std::uint8_t* bgra = _result.row(y);
        for (const std::uint8_t touched : _touched) {
            if (touched != 0 && (bgra[0] != bgra[1] || bgra[1] != bgra[2])) return false;
            bgra += 4;
        }
    }
    return true;
}

void ResultRows::markTouched(int y, std::uint8_t* touched) const {
    std::fill_n(touched, _result.width(), std::uint8_t{1});
    if (!_pixels || y < _placed.y || y >= _placed.y + _placed.height) return;
    if (_placed.width <= 0) return;
    const std::uint8_t* drawn = _result.row(y) + 4 * static_cast<std::ptrdiff_t>(_placed.x);
    const auto count = static_cast<std::size_t>(_placed.width);
    auto [source, step] = Walk(*_pixels, _toUpright, _placed.x, y);
    std::uint8_t* const marks = touched + _placed.x;
    if (step == 4 && std::memcmp(drawn, source, 4 * count) == 0) {
        std::fill_n(marks, count, std::uint8_t{0});
    } else {
        for (std::size_t i = 0; i < count; ++i, drawn += 4, source += step)
            marks[i] = std::memcmp(drawn, source, 4) == 0 ? 0 : 1;
    }
    for (const gfx::PixelRect& hidden : _hidden) {
        if (y >= hidden.y && y < hidden.y + hidden.height)
            std::fill_n(touched + hidden.x, hidden.width, std::uint8_t{1});
    }
}

void ResultRows::read(int y, std::uint8_t* bgra) const {
    const int width = _result.width();
    if (!_raw && !_leavesOut) return copyDrawn(y, 0, width, bgra);
    markTouched(y, _touched.data());
    for (int first = 0; first < width;) {
        const auto begin = _touched.begin() + first;
        const auto end = std::find(begin, _touched.end(), *begin == 0 ? 1 : 0);
        const int last = first + static_cast<int>(end - begin);
        if (*begin != 0) {
            copyDrawn(y, first, last, bgra);
        } else if (_leavesOut) {
            std::memset(bgra + 4 * static_cast<std::ptrdiff_t>(first), 0,
                        4 * static_cast<std::size_t>(last - first));
        } else {
            copyRaw(y, first, last, bgra);
        }
        first = last;
    }
}

void ResultRows::copyDrawn(int y, int first, int last, std::uint8_t* bgra) const {
    const std::ptrdiff_t offset = 4 * static_cast<std::ptrdiff_t>(first);
    const auto count = static_cast<std::size_t>(last - first);
    straightenRow(_result.row(y) + offset, bgra + offset, count);
    if (_conversion) _conversion->convertRow(bgra + offset, bgra + offset, count);
}

void ResultRows::copyRaw(int y, int first, int last, std::uint8_t* bgra) const {
    auto [source, step] = Walk(*_raw, _toRaw, first, y);
    for (int x = first; x < last; ++x, source += step)
        std::memcpy(bgra + 4 * static_cast<std::ptrdiff_t>(x), source, 4);
}

}  // namespace kalim::codec
