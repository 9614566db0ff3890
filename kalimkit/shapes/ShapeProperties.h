#pragma once

#include "kalimkit/tool/ToolProperty.h"

// What several kinds of tools have, see ToolRow::properties.
namespace kalim {

inline constexpr ToolProperty::Choice dashChoices[] = {
    {"solid", "实线", "Solid"}, {"dashed", "虚线", "Dashed"}, {"dotted", "点线", "Dotted"}};
inline constexpr ToolProperty dashProperty{.name = "dash",
                                           .type = ToolProperty::Type::Choice,
                                           .text = "线型",
                                           .english = "Line style",
                                           .choices = dashChoices};

inline constexpr ToolProperty fillProperty{
    .name = "fill", .type = ToolProperty::Type::Color, .text = "填充", .english = "Fill"};

}  // namespace kalim
