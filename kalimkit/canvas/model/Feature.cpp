#include "kalimkit/canvas/model/Feature.h"

#include <algorithm>

namespace kalim {

void Feature::set(std::string_view key, FeatureValue value) {
    const auto found = std::ranges::find(
        _entries, key, [](const auto& entry) -> std::string_view { return entry.first; });
    if (found != _entries.end()) {
        found->second = std::move(value);
    } else {
        _entries.emplace_back(std::string(key), std::move(value));
    }
}

const FeatureValue* Feature::find(std::string_view key) const {
    for (const auto& [name, value] : _entries) {
        if (name == key) return &value;
    }
    return nullptr;
}

}  // namespace kalim
