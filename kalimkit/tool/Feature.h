#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

// Lists of points that many snapshots may share, because nothing changes them any more.
using PointLines = std::vector<std::vector<gfx::Point>>;
using PointLinesRef = std::shared_ptr<const PointLines>;

using FeatureValue =
    std::variant<double, std::int64_t, gfx::Point, gfx::ColorRef, std::string, PointLinesRef>;

// A tool's snapshot: its properties by key. A handful of entries, so a plain list serves as the
// map. Recorded snapshots are shared as FeatureRef and never change again.
class KALIM_API Feature {
public:
    // Replaces the value of a key that is there already.
    void set(std::string_view key, FeatureValue value);
    // Null when the key is missing or its value is of another kind.
    template <typename Value>
    const Value* get(std::string_view key) const {
        const FeatureValue* value = find(key);
        return value ? std::get_if<Value>(value) : nullptr;
    }
    const FeatureValue* find(std::string_view key) const;
    std::size_t count() const { return _entries.size(); }
    // Whether a tool would be the same after reading either: numbers in single precision, as they
    // are read back, colours by value.
    bool isEqual(const Feature& other) const;

private:
    std::vector<std::pair<std::string, FeatureValue>> _entries;
};

using FeatureRef = std::shared_ptr<const Feature>;

}  // namespace kalim
