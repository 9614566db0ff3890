#pragma once

#include "kalimkit/tool/ToolProperty.h"

// What several kinds of tools have, see ToolRow::properties.
namespace kalim {

inline constexpr ToolProperty::Choice dashChoices[] = {
    {"solid", "实线"}, {"dashed", "虚线"}, {"dotted", "点线"}};
inline constexpr ToolProperty dashProperty{
    .name = "dash", .type = ToolProperty::Type::Choice, .text = "线型", .choices = dashChoices};

// What keeps a text legible whatever lies under it.
inline constexpr ToolProperty::Choice groundChoices[] = {
    {"outline", "描边"}, {"none", "无"}, {"plate", "底板"}, {"shadow", "阴影"}};
inline constexpr ToolProperty groundProperty{.name = "ground",
                                             .type = ToolProperty::Type::Choice,
                                             .text = "文字衬底",
                                             .choices = groundChoices};

inline constexpr ToolProperty::Choice alignChoices[] = {
    {"start", "起始"}, {"center", "居中"}, {"end", "末尾"}};
inline constexpr ToolProperty alignProperty{
    .name = "align", .type = ToolProperty::Type::Choice, .text = "对齐", .choices = alignChoices};

inline constexpr ToolProperty boldProperty{
    .name = "bold", .type = ToolProperty::Type::Switch, .text = "粗体", .usual = 1};

// Which way paragraphs run: as their first letters do, or all of them one way.
inline constexpr ToolProperty::Choice directionChoices[] = {
    {"auto", "自动"}, {"ltr", "从左到右"}, {"rtl", "从右到左"}};
inline constexpr ToolProperty directionProperty{.name = "direction",
                                                .type = ToolProperty::Type::Choice,
                                                .text = "文字方向",
                                                .choices = directionChoices,
                                                .isHidden = true};

// Whether texts stand and contrast as their letters and colours ask. It is the text's own: the
// picture of a document is the same on every canvas.
inline constexpr ToolProperty adaptsProperty{
    .name = "adapts", .type = ToolProperty::Type::Switch, .isHidden = true, .isForgiving = true};

inline constexpr ToolProperty fillProperty{
    .name = "fill", .type = ToolProperty::Type::Color, .text = "填充"};

}  // namespace kalim
