#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Where a tool goes among those that lie over each other.
enum class OrderChange { Forward, Backward, ToFront, ToBack };

// A place in a drawing order: who lies there, the topmost last.
struct OrderedPlace {
    // It is to go elsewhere.
    bool isChosen = false;
    // Only places of the same layer are passed.
    int layer = 0;
};

// The new order, as the old places of those that lie there then. The chosen ones keep their order
// among themselves, and so do all others. A step forward or backward passes the next one of the
// same layer that is not chosen.
KALIM_API std::vector<std::size_t> changedOrder(std::span<const OrderedPlace> places,
                                                OrderChange change);

}  // namespace kalim
