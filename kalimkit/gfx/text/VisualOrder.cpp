#include "kalimkit/gfx/text/VisualOrder.h"

#include <algorithm>
#include <numeric>

namespace kalim::gfx {

// From the highest level down to the lowest odd one, every run at that level or above is turned.
std::vector<std::size_t> visualOrder(std::span<const std::uint8_t> levels) {
    std::vector<std::size_t> order(levels.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const std::uint8_t highest = levels.empty() ? std::uint8_t{0} : std::ranges::max(levels);
    for (std::uint8_t level = highest; level > 0; --level) {
        const auto isAtLeast = [&](std::size_t i) { return levels[i] >= level; };
        for (auto first = order.begin(); first != order.end();) {
            first = std::find_if(first, order.end(), isAtLeast);
            const auto last = std::find_if_not(first, order.end(), isAtLeast);
            std::reverse(first, last);
            first = last;
        }
    }
    return order;
}

}  // namespace kalim::gfx
