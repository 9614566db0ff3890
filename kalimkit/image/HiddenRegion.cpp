#include "kalimkit/image/HiddenRegion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace kalim {

namespace {

constexpr double tolerance = 1e-6;

// The pixels from `first` up to `end` of one axis.
struct Run {
    int first = 0;
    int end = 0;
};

int flooredTo(int cell, int corner, int place) {
    const int offset = (place - corner) % cell;
    return place - (offset < 0 ? offset + cell : offset);
}

Run grown(double from, double to, int cell, int corner, int reach, int length) {
    Run run;
    run.first = static_cast<int>(
        std::floor(std::clamp(from, 0.0, static_cast<double>(length)) + tolerance));
    run.end =
        static_cast<int>(std::ceil(std::clamp(to, 0.0, static_cast<double>(length)) - tolerance));
    // A sliver narrower than the tolerance still hides what it lies on.
    if (to > from && from < length && to > 0) run.end = std::max(run.end, run.first + 1);
    if (run.first >= std::min(run.end, length)) return {};
    const int side = std::max(cell, 1);
    run.first = flooredTo(side, corner, run.first) - reach;
    run.end = flooredTo(side, corner, run.end - 1) + side + reach;
    return {std::max(run.first, 0), std::min(run.end, length)};
}

void fillRow(std::uint8_t* pixels, int count, const std::uint8_t* color) {
    for (int x = 0; x < count; ++x)
        std::memcpy(pixels + static_cast<std::ptrdiff_t>(x) * 4, color, 4);
}

void fillSealedRow(std::uint8_t* row, const gfx::PixelRect& rect, const std::uint8_t* colors,
                   int level) {
    const int end = rect.x + rect.width;
    for (int x = rect.x; x < end;) {
        const int block = x / level;
        const int blockEnd = std::min((block + 1) * level, end);
        fillRow(row + static_cast<std::ptrdiff_t>(x) * 4, blockEnd - x,
                colors + static_cast<std::ptrdiff_t>(block) * 4);
        x = blockEnd;
    }
}

}  // namespace

gfx::PixelRect grownToGrid(const gfx::Rect& rect, const gfx::PixelGrid& grid,
                           gfx::PixelSize picture) {
    const Run across =
        grown(rect.minX(), rect.maxX(), grid.cell.width, grid.x, grid.reach, picture.width);
    const Run down =
        grown(rect.minY(), rect.maxY(), grid.cell.height, grid.y, grid.reach, picture.height);
    if (across.first >= across.end || down.first >= down.end) return {};
    return {across.first, down.first, across.end - across.first, down.end - down.first};
}

void hideRegions(gfx::Bitmap& picture, std::span<const HiddenRegion> regions,
                 const gfx::Bitmap& sealed, int level) {
    for (const HiddenRegion& region : regions) {
        const gfx::PixelRect& rect = region.rect;
        gfx::Bitmap solid(1, 1);
        if (region.solid) solid.setColorAt(0, 0, region.solid->withAlpha(1));
        for (int y = rect.y; y < rect.y + rect.height; ++y) {
            std::uint8_t* const row = picture.row(y);
            if (region.solid) {
                fillRow(row + static_cast<std::ptrdiff_t>(rect.x) * 4, rect.width, solid.data());
            } else {
                fillSealedRow(row, rect, sealed.row(y / level), level);
            }
        }
    }
}

}  // namespace kalim
