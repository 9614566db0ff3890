#include "kalimkit/tool/ToolProperty.h"

#include <algorithm>
#include <cmath>

namespace kalim {

namespace {

// Longer ones are no words of somebody's.
constexpr std::size_t longestText = 1000;

bool isColorText(std::string_view text) {
    constexpr std::size_t length = std::string_view("#RRGGBBAA").size();
    constexpr std::string_view digits = "0123456789ABCDEFabcdef";
    return text.size() == length && text.front() == '#' &&
           text.find_first_not_of(digits, 1) == std::string_view::npos;
}

}  // namespace

ToolPropertyValue ToolProperty::usualValue() const {
    if (type == Type::Number || type == Type::Switch) return usual;
    if (!choices.empty()) return std::string(choices.front().name);
    return std::string();
}

bool ToolProperty::takes(const ToolPropertyValue& value) const {
    const auto* const number = std::get_if<double>(&value);
    const auto* const words = std::get_if<std::string>(&value);
    switch (type) {
        case Type::Number:
            return number && std::isfinite(*number) && *number >= least && *number <= most;
        case Type::Switch:
            return number && (*number == 0 || *number == 1);
        case Type::Choice:
            return words && std::ranges::find(choices, std::string_view(*words), &Choice::name) !=
                                choices.end();
        case Type::Color:
            return words && (words->empty() || isColorText(*words));
        case Type::Text:
            return words && words->size() <= longestText;
    }
    return false;
}

}  // namespace kalim
