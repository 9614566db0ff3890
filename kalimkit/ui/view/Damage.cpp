#include "kalimkit/ui/view/Damage.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kalim::ui {

namespace {

// Two rectangles become one when that draws at most this much more than the two.
constexpr double toleratedWaste = 0.25;

bool isFinite(const gfx::Rect& rect) {
    return std::isfinite(rect.minX()) && std::isfinite(rect.minY()) && std::isfinite(rect.maxX()) &&
           std::isfinite(rect.maxY());
}

double wasteOfMerging(const gfx::Rect& a, const gfx::Rect& b) {
    return a.unionWith(b).area() - a.area() - b.area();
}

bool belongTogether(const gfx::Rect& a, const gfx::Rect& b) {
    return a.intersects(b) || wasteOfMerging(a, b) <= toleratedWaste * (a.area() + b.area());
}

}  // namespace

void Damage::add(const gfx::Rect& rect) {
    if (rect.isEmpty() || !isFinite(rect)) return;
    gfx::Rect merged = rect;
    for (;;) {
        const auto other = std::ranges::find_if(
            _rects, [&merged](const gfx::Rect& known) { return belongTogether(known, merged); });
        if (other == _rects.end()) break;
        merged = merged.unionWith(*other);
        _rects.erase(other);
    }
    _rects.push_back(merged);
    if (_rects.size() > capacity) mergeCheapestPair();
}

void Damage::mergeCheapestPair() {
    double least = std::numeric_limits<double>::infinity();
    std::size_t first = 0;
    std::size_t second = 1;
    for (std::size_t i = 0; i < _rects.size(); ++i) {
        for (std::size_t j = i + 1; j < _rects.size(); ++j) {
            const double waste = wasteOfMerging(_rects[i], _rects[j]);
            if (waste >= least) continue;
            least = waste;
            first = i;
            second = j;
        }
    }
    const gfx::Rect both = _rects[first].unionWith(_rects[second]);
    _rects.erase(_rects.begin() + static_cast<std::ptrdiff_t>(second));
    _rects.erase(_rects.begin() + static_cast<std::ptrdiff_t>(first));
    add(both);
}

}  // namespace kalim::ui
