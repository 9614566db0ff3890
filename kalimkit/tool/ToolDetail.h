#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kalimkit/gfx/Point.h"
#include "kalimkit/tool/Feature.h"

namespace kalim {

// Something that only some kinds of tools have, by the name that descriptions of a canvas use.
struct ToolDetail {
    std::string_view name;
    std::variant<double, std::string, std::vector<gfx::Point>, PointLines> value;
};
using ToolDetails = std::vector<ToolDetail>;

}  // namespace kalim
