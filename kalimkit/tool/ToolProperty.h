#pragma once

#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Numbers, and 1 or 0 for switches; texts, the names of choices, and colours "#RRGGBBAA".
using ToolPropertyValue = std::variant<double, std::string>;
using ToolPropertyValues = std::vector<std::pair<std::string, ToolPropertyValue>>;

// Something of a kind's look that people choose besides colour, width and style, and that a bar can
// offer without knowing the kind. The texts outlive the class.
struct KALIM_API ToolProperty {
    enum class Type { Number, Switch, Choice, Color, Text };

    // One that can be chosen, as documents name it.
    struct Choice {
        std::string_view name;
        // What it is called, in Chinese; `english` where no catalogue has it.
        std::string_view text;
        std::string_view english = {};
        // Bars name it where it is what a tool has, and do not offer it: a host has to set more.
        bool isNamedOnly = false;
    };

    // What documents, scenarios and hosts call it.
    std::string_view name;
    Type type = Type::Number;
    std::string_view text = {};
    std::string_view english = {};
    // Of numbers; a bar moves them by the step.
    double least = 0;
    double most = 1;
    double step = 0;
    // What a tool has that nobody has chosen for. A choice's first is the usual one, that of a text
    // too; else an empty text is, or no colour.
    double usual = 0;
    std::span<const Choice> choices = {};
    // Bars leave it out: handles, or a host, set it.
    bool isHidden = false;
    // New tools have it, as 1, under forgiving rules.
    bool isForgiving = false;
    // Of a text that may be any besides its choices: what bars offer beside letting it be typed.
    std::span<const std::string_view> samples = {};

    ToolPropertyValue usualValue() const;
    // Whether a tool can have the value; a number of another step can be had.
    bool takes(const ToolPropertyValue& value) const;
};

// How much of a tool is seen, as one: parts of it that overlap show no more. Every kind has it but
// those that hide.
inline constexpr ToolProperty opacityProperty{
    .name = "opacity", .text = "不透明度", .least = 0.05, .most = 1, .step = 0.05, .usual = 1};

}  // namespace kalim
