#include "kalimkit/codec/TerminalText.h"

#include <cstdint>
#include <cstdio>
#include <optional>

namespace kalim::codec {

namespace {

struct Character {
    std::uint32_t code;
    std::size_t length;
};

// Nothing for bytes that are no UTF-8.
std::optional<Character> firstCharacter(std::string_view text) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    if (byte(0) < 0x80) return Character{byte(0), 1};
    const std::size_t length = byte(0) >= 0xF0 ? 4 : byte(0) >= 0xE0 ? 3 : 2;
    if (byte(0) < 0xC2 || byte(0) > 0xF4 || text.size() < length) return std::nullopt;
    std::uint32_t code = byte(0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80) return std::nullopt;
        code = code << 6U | (byte(i) & 0x3FU);
    }
    const bool isOverlong = code < (length == 4 ? 0x10000U : length == 3 ? 0x800U : 0x80U);
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    if (isOverlong || isSurrogate || code > 0x10FFFF) return std::nullopt;
    return Character{code, length};
}

bool isControl(std::uint32_t code) {
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

bool turnsDirection(std::uint32_t code) {
    return code == 0x061C || code == 0x200E || code == 0x200F ||
           (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

std::string escaped(const char* format, unsigned value) {
    char text[12];
    return {text, static_cast<std::size_t>(std::snprintf(text, sizeof text, format, value))};
}

}  // namespace

std::string terminalText(std::string_view text) {
    std::string shown;
    while (!text.empty()) {
        const std::optional<Character> character = firstCharacter(text);
        const std::size_t length = character ? character->length : 1;
        if (!character) {
            shown += escaped("\\x%02X", static_cast<std::uint8_t>(text.front()));
        } else if (isControl(character->code)) {
            shown += escaped("\\x%02X", character->code);
        } else if (turnsDirection(character->code)) {
            shown += escaped("\\u%04X", character->code);
        } else {
            shown += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return shown;
}

}  // namespace kalim::codec
