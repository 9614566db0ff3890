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

// What keeps a text legible whatever lies under it.
inline constexpr ToolProperty::Choice groundChoices[] = {{"outline", "描边", "Outline"},
                                                         {"none", "无", "None"},
                                                         {"plate", "底板", "Plate"},
                                                         {"shadow", "阴影", "Shadow"}};
inline constexpr ToolProperty groundProperty{.name = "ground",
                                             .type = ToolProperty::Type::Choice,
                                             .text = "文字衬底",
                                             .english = "Ground",
                                             .choices = groundChoices};

inline constexpr ToolProperty::Choice alignChoices[] = {
    {"start", "起始", "Start"}, {"center", "居中", "Center"}, {"end", "末尾", "End"}};
inline constexpr ToolProperty alignProperty{.name = "align",
                                            .type = ToolProperty::Type::Choice,
                                            .text = "对齐",
                                            .english = "Alignment",
                                            .choices = alignChoices};

inline constexpr ToolProperty boldProperty{.name = "bold",
                                           .type = ToolProperty::Type::Switch,
                                           .text = "粗体",
                                           .english = "Bold",
                                           .usual = 1};

// Which way paragraphs run: as their first letters do, or all of them one way.
inline constexpr ToolProperty::Choice directionChoices[] = {{"auto", "自动", "Automatic"},
                                                            {"ltr", "从左到右", "Left to right"},
                                                            {"rtl", "从右到左", "Right to left"}};
inline constexpr ToolProperty directionProperty{.name = "direction",
                                                .type = ToolProperty::Type::Choice,
                                                .text = "文字方向",
                                                .english = "Direction",
                                                .choices = directionChoices,
                                                .isHidden = true};

inline constexpr ToolProperty fillProperty{
    .name = "fill", .type = ToolProperty::Type::Color, .text = "填充", .english = "Fill"};

}  // namespace kalim
