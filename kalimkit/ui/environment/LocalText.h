#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

// What is put into a text where it has the name in braces: words, or a number of things, which
// chooses among the plurals of the text.
struct KALIM_API TextArgument {
    TextArgument(std::string_view textName, std::string words)
        : name(textName), value(std::move(words)) {}
    TextArgument(std::string_view textName, std::integral auto number)
        : name(textName), value(std::to_string(number)), count(number) {}

    std::string_view name;
    std::string value;
    std::optional<std::int64_t> count;
};

// Puts the arguments into a text, each as often as it is there. "{}" is the first one, and braces
// around what is none of them stay.
KALIM_API std::string filledText(std::string_view text,
                                 std::initializer_list<TextArgument> arguments);

// The current environment's text for a key, with the arguments in it.
KALIM_API std::string localText(const std::string& key,
                                std::initializer_list<TextArgument> arguments = {});

// What a host has called something of its own: the current environment's text for it, else in
// English where there is such a text and the language is not Chinese.
KALIM_API std::string hostText(std::string_view text, std::string_view english);

}  // namespace kalim::ui
