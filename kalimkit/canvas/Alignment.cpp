#include "kalimkit/canvas/Alignment.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace kalim {

namespace {

gfx::Point offsetTo(const gfx::Rect& box, Alignment alignment, const gfx::Rect& within) {
    switch (alignment) {
        case Alignment::Left:
            return {within.minX() - box.minX(), 0};
        case Alignment::Center:
            return {within.midX() - box.midX(), 0};
        case Alignment::Right:
            return {within.maxX() - box.maxX(), 0};
        case Alignment::Top:
            return {0, within.minY() - box.minY()};
        case Alignment::Middle:
            return {0, within.midY() - box.midY()};
        case Alignment::Bottom:
            return {0, within.maxY() - box.maxY()};
    }
    return {};
}

}  // namespace

std::vector<gfx::Point> alignmentOffsets(std::span<const gfx::Rect> boxes, Alignment alignment,
                                         const gfx::Rect& within) {
    std::vector<gfx::Point> offsets;
    for (const gfx::Rect& box : boxes)
        offsets.push_back(offsetTo(box, alignment, within));
    return offsets;
}

std::vector<gfx::Point> distributionOffsets(std::span<const gfx::Rect> boxes, Direction direction) {
    std::vector<gfx::Point> offsets(boxes.size());
    if (boxes.size() < 3) return offsets;
    const bool isAcross = direction == Direction::Horizontally;
    const auto low = [&](std::size_t i) { return isAcross ? boxes[i].minX() : boxes[i].minY(); };
    const auto length = [&](std::size_t i) {
        return isAcross ? boxes[i].size.width : boxes[i].size.height;
    };
    const auto middle = [&](std::size_t i) { return low(i) + length(i) / 2; };
    std::vector<std::size_t> order(boxes.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::ranges::stable_sort(order, {}, middle);
    double filled = 0;
    for (const std::size_t i : order)
        filled += length(i);
    const double whole = low(order.back()) + length(order.back()) - low(order.front());
    const double gap = (whole - filled) / static_cast<double>(boxes.size() - 1);
    double place = low(order.front());
    for (const std::size_t i : order) {
        const double offset = i == order.back() ? 0 : place - low(i);
        offsets[i] = isAcross ? gfx::Point{offset, 0} : gfx::Point{0, offset};
        place += length(i) + gap;
    }
    return offsets;
}

}  // namespace kalim
