#include "kalimkit/tool/ToolPlaces.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace kalim {

void ToolPlaces::takeOut(ToolList& list, const ToolList& leaving) {
    ToolList staying;
    for (std::size_t place = 0; place < list.size(); ++place) {
        if (std::ranges::find(leaving, list[place]) == leaving.end()) {
            staying.push_back(list[place]);
        } else {
            _places[list[place]] = place;
        }
    }
    list = std::move(staying);
}

void ToolPlaces::putBack(ToolList& list, ToolList returning) {
    const auto placeOf = [this](const ToolRef& tool) {
        const auto found = _places.find(tool);
        return found == _places.end() ? std::numeric_limits<std::size_t>::max() : found->second;
    };
    // From the lowest: a place counts those below it.
    std::ranges::stable_sort(returning, {}, placeOf);
    for (const ToolRef& tool : returning) {
        const auto place = static_cast<std::ptrdiff_t>(std::min(placeOf(tool), list.size()));
        list.insert(list.begin() + place, tool);
        _places.erase(tool);
    }
}

}  // namespace kalim
