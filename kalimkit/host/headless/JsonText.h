#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/host/headless/JsonValue.h"

namespace kalim {

// A parsed text, or why it cannot be understood.
struct ParsedJson {
    JsonValue value;
    std::optional<std::string> error;
};

// Reads one JSON value. A key that an object has twice is an error, and so are numbers too large
// for a double, values nested deeper than 32 and objects of more than 32 keys.
ParsedJson parseJson(std::string_view text);

// One line without a line feed. Whole numbers up to 2^53 are written without a fraction, so that a
// reader may use them as indexes; all others with the fewest digits that read back exactly.
std::string dumpJson(const JsonValue& value);

// The longest quotation of what was read in a message, bytes.
inline constexpr std::size_t longestQuote = 60;

// A dump, cut short where it is longer than that.
std::string cutQuote(const std::string& dump);

}  // namespace kalim
