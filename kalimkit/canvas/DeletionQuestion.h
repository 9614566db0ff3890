#pragma once

#include <cstddef>
#include <functional>

namespace kalim {

// What a host answers before so many selected tools are deleted, by whatever button, key or call:
// false keeps them. Of an environment, Environment::attachment<DeletionQuestion>(); without a
// question all may go. The answer is given at once, and nothing is done to the canvas meanwhile.
struct DeletionQuestion {
    std::function<bool(std::size_t count)> mayDelete;

    bool answer(std::size_t count) const { return !mayDelete || mayDelete(count); }
};

}  // namespace kalim
