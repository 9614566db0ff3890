#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kalimkit/gfx/Point.h"
#include "kalimkit/tool/Feature.h"

namespace kalim {

using ToolDetailValue = std::variant<double, std::string, std::vector<gfx::Point>, PointLines>;

// Something that only some kinds of tools have, by the name that descriptions of a canvas use.
struct ToolDetail {
    std::string_view name;
    ToolDetailValue value;
};
using ToolDetails = std::vector<ToolDetail>;

// That a kind of tools has such a detail. The types are those of ToolDetailValue, in its order.
struct ToolDetailRule {
    enum class Type { Number, Text, Points, Lines };

    std::string_view name;
    Type type = Type::Number;
    // No tool of the kind is without it; others say nothing where they are as usual.
    bool isNeeded = true;
    // No number of the detail is smaller.
    double least = -1e9;
};

}  // namespace kalim
