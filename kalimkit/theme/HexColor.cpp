#include "kalimkit/theme/HexColor.h"

#include <cstddef>
#include <span>
#include <vector>

#include "kalimkit/gfx/Utf8.h"

namespace kalim {

namespace {

using Characters = std::span<const char32_t>;

bool isSpace(char32_t c) {
    return (c >= 0x09 && c <= 0x0D) || c == 0x20 || c == 0x85 || c == 0xA0 || c == 0x1680 ||
           (c >= 0x2000 && c <= 0x200A) || c == 0x2028 || c == 0x2029 || c == 0x202F ||
           c == 0x205F || c == 0x3000;
}

// The text's characters, letters of ASCII in upper case; no other letter means anything in a
// colour.
std::vector<char32_t> upperCase(std::string_view text) {
    std::vector<char32_t> characters;
    characters.reserve(text.size());
    for (std::size_t offset = 0; offset < text.size();) {
        const auto [c, byteCount] = gfx::decodeUtf8(text, offset);
        characters.push_back(c >= U'a' && c <= U'z' ? c - U'a' + U'A' : c);
        offset += byteCount;
    }
    return characters;
}

Characters trimmed(Characters characters) {
    while (!characters.empty() && isSpace(characters.front()))
        characters = characters.subspan(1);
    while (!characters.empty() && isSpace(characters.back())) {
        characters = characters.first(characters.size() - 1);
    }
    return characters;
}

// Yields the digit's value, below 0 for none.
int digit(char32_t c) {
    if (c >= U'0' && c <= U'9') return static_cast<int>(c - U'0');
    if (c >= U'A' && c <= U'F') return static_cast<int>(c - U'A') + 10;
    return -1;
}

double channel(Characters characters, std::size_t first) {
    const int high = digit(characters[first]);
    const int low = digit(characters[first + 1]);
    return high < 0 || low < 0 ? 0 : (high * 16 + low) / 255.0;
}

}  // namespace

gfx::ColorRef colorWithHex2(std::uint32_t hex) {
    return colorWithHex2Alpha(hex, 1);
}

gfx::ColorRef colorWithHex2Alpha(std::uint32_t hex, double alpha) {
    return gfx::makeColor((hex >> 16 & 0xFF) / 255.0, (hex >> 8 & 0xFF) / 255.0,
                          (hex & 0xFF) / 255.0, alpha);
}

gfx::ColorRef colorWithHexString(std::string_view text) {
    return colorWithHexStringAlpha(text, 1);
}

gfx::ColorRef colorWithHexStringAlpha(std::string_view text, double alpha) {
    const std::vector<char32_t> all = upperCase(text);
    Characters characters = trimmed(all);
    const gfx::ColorRef clear = gfx::makeColor(0, 0, 0, 0);
    if (characters.size() < 6) return clear;
    if (characters[0] == U'0' && characters[1] == U'X') characters = characters.subspan(2);
    if (characters[0] == U'#') characters = characters.subspan(1);
    if (characters.size() != 6) return clear;
    return gfx::makeColor(channel(characters, 0), channel(characters, 2), channel(characters, 4),
                          alpha);
}

}  // namespace kalim
