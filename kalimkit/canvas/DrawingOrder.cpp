#include "kalimkit/canvas/DrawingOrder.h"

#include <algorithm>
#include <functional>
#include <numeric>

namespace kalim {

namespace {

// The last index always is the top, or the bottom where the order is seen from below.
void stepUp(std::vector<std::size_t>& order, std::span<const OrderedPlace> places) {
    for (std::size_t i = order.size(); i-- > 0;) {
        const OrderedPlace& own = places[order[i]];
        if (!own.isChosen) continue;
        std::size_t above = i + 1;
        while (above < order.size() && places[order[above]].layer != own.layer)
            ++above;
        if (above == order.size() || places[order[above]].isChosen) continue;
        const auto begin = order.begin();
        const auto at = [&](std::size_t place) {
            return begin + static_cast<std::ptrdiff_t>(place);
        };
        std::rotate(at(i), at(i + 1), at(above + 1));
    }
}

}  // namespace

std::vector<std::size_t> changedOrder(std::span<const OrderedPlace> places, OrderChange change) {
    std::vector<std::size_t> order(places.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    const auto isChosen = [&](std::size_t place) { return places[place].isChosen; };
    switch (change) {
        case OrderChange::ToFront:
            std::ranges::stable_partition(order, std::not_fn(isChosen));
            break;
        case OrderChange::ToBack:
            std::ranges::stable_partition(order, isChosen);
            break;
        case OrderChange::Forward:
            stepUp(order, places);
            break;
        case OrderChange::Backward:
            std::ranges::reverse(order);
            stepUp(order, places);
            std::ranges::reverse(order);
            break;
    }
    return order;
}

}  // namespace kalim
