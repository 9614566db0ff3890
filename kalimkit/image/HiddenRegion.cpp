#include "kalimkit/image/HiddenRegion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

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

struct Span {
    double from = std::numeric_limits<double>::infinity();
    double to = -std::numeric_limits<double>::infinity();

    void include(double x) {
        from = std::min(from, x);
        to = std::max(to, x);
    }
};

// How far the area reaches across between two heights.
Span acrossBetween(const gfx::Polygon& area, double top, double bottom) {
    Span span;
    for (std::size_t i = 0; i < area.size(); ++i) {
        const gfx::Point& from = area[i];
        const gfx::Point& to = area[(i + 1) % area.size()];
        const double low = std::max(std::min(from.y, to.y), top);
        const double high = std::min(std::max(from.y, to.y), bottom);
        if (low > high) continue;
        const auto at = [&](double y) {
            return from.x + (to.x - from.x) * ((y - from.y) / (to.y - from.y));
        };
        if (from.y == to.y) {
            span.include(from.x);
            span.include(to.x);
        } else {
            span.include(at(low));
            span.include(at(high));
        }
    }
    return span;
}

// Rows that hide the same are one.
void append(gfx::PixelRects& rows, const gfx::PixelRect& row) {
    if (!rows.empty()) {
        gfx::PixelRect& last = rows.back();
        if (last.x == row.x && last.width == row.width && last.y + last.height >= row.y) {
            last.height = row.y + row.height - last.y;
            return;
        }
    }
    rows.push_back(row);
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

gfx::PixelRects grownToGrid(const gfx::Polygon& area, const gfx::PixelGrid& grid,
                            gfx::PixelSize picture) {
    const gfx::Rect bounds = gfx::boundsOf(area);
    const gfx::PixelRect whole = grownToGrid(bounds, grid, picture);
    gfx::PixelRects rows;
    if (whole.isEmpty()) return rows;
    const int cell = std::max(grid.cell.height, 1);
    const auto last = static_cast<int>(std::min<double>(bounds.maxY(), picture.height));
    for (int y = flooredTo(cell, grid.y, static_cast<int>(std::max(bounds.minY(), 0.0))); y <= last;
         y += cell) {
        const Span span = acrossBetween(area, y, y + cell);
        if (span.from > span.to) continue;
        // What touches a border without going over it counts here, too.
        const gfx::PixelRect row = grownToGrid(
            gfx::Rect(span.from - tolerance * 2, y, span.to - span.from + tolerance * 4, cell),
            grid, picture);
        if (!row.isEmpty()) append(rows, row);
    }
    return rows;
}

void hideRegions(gfx::Bitmap& picture, std::span<const HiddenRegion> regions,
                 const gfx::Bitmap& sealed, int level) {
    for (const HiddenRegion& region : regions) {
        gfx::Bitmap solid(1, 1);
        if (region.solid) solid.setColorAt(0, 0, region.solid->withAlpha(1));
        for (const gfx::PixelRect& rect : region.rects) {
            for (int y = rect.y; y < rect.y + rect.height; ++y) {
                std::uint8_t* const row = picture.row(y);
                if (region.solid) {
                    fillRow(row + static_cast<std::ptrdiff_t>(rect.x) * 4, rect.width,
                            solid.data());
                } else {
                    fillSealedRow(row, rect, sealed.row(y / level), level);
                }
            }
        }
    }
}

}  // namespace kalim
