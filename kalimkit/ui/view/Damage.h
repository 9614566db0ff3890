#pragma once

#include <cstddef>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim::ui {

// A short list of rectangles to draw again. Rectangles that overlap, or whose union wastes little,
// are merged, so that nothing is drawn twice and the list stays short.
class KALIM_API Damage {
public:
    static constexpr std::size_t capacity = 8;

    // Room for all there will be, so that views go away without asking for memory.
    Damage() { _rects.reserve(capacity + 1); }

    // Empty rectangles and those that are not finite are ignored.
    void add(const gfx::Rect& rect);
    void clear() { _rects.clear(); }
    bool isEmpty() const { return _rects.empty(); }
    // No two of them meet.
    const std::vector<gfx::Rect>& rects() const { return _rects; }

private:
    void mergeCheapestPair();

    std::vector<gfx::Rect> _rects;
};

}  // namespace kalim::ui
