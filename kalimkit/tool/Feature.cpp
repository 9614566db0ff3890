#include "kalimkit/tool/Feature.h"

#include <algorithm>
#include <type_traits>

namespace kalim {

namespace {

bool areEqual(const FeatureValue& a, const FeatureValue& b) {
    if (a.index() != b.index()) return false;
    return std::visit(
        [&b]<typename Value>(const Value& value) {
            const Value& other = std::get<Value>(b);
            if constexpr (std::is_same_v<Value, double>) {
                return static_cast<float>(value) == static_cast<float>(other);
            } else if constexpr (std::is_same_v<Value, gfx::ColorRef>) {
                return gfx::equalColors(value, other);
            } else if constexpr (std::is_same_v<Value, PointLinesRef>) {
                return value == other || (value && other && *value == *other);
            } else {
                return value == other;
            }
        },
        a);
}

}  // namespace

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

bool Feature::isEqual(const Feature& other) const {
    return count() == other.count() && std::ranges::all_of(_entries, [&](const auto& entry) {
               const FeatureValue* value = other.find(entry.first);
               return value && areEqual(entry.second, *value);
           });
}

}  // namespace kalim
