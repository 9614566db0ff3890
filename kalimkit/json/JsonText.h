#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/json/JsonValue.h"

namespace kalim {

// A parsed text, or why it cannot be understood.
struct ParsedJson {
    JsonValue value;
    std::optional<std::string> error;
};

// What a text may hold, so that nobody can have a reader run out of memory or time.
struct JsonLimits {
    // How deep values may be nested.
    std::size_t depth = 32;
    // How many keys an object may have.
    std::size_t keys = 32;
    // How many elements an array may have that the outermost object holds.
    std::size_t elements = std::numeric_limits<std::size_t>::max();
};

// Reads one JSON value; a byte order mark before it is passed over. Errors are a key that an object
// has twice, numbers too large for a double, texts that are no UTF-8 or name half of a surrogate
// pair, and what goes beyond the limits.
KALIM_API ParsedJson parseJson(std::string_view text, const JsonLimits& limits = {});

// One line without a line feed. Whole numbers up to 2^53 are written without a fraction, so that a
// reader may use them as indexes; all others with the fewest digits that read back exactly.
KALIM_API std::string dumpJson(const JsonValue& value);

// The longest quotation of what was read in a message, bytes.
inline constexpr std::size_t longestQuote = 60;

// A dump, cut short where it is longer than that.
KALIM_API std::string cutQuote(const std::string& dump);

}  // namespace kalim
