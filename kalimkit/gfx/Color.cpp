#include "kalimkit/gfx/Color.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace kalim::gfx {

namespace {

int hexDigit(char character) {
    if (character >= '0' && character <= '9') return character - '0';
    if (character >= 'a' && character <= 'f') return character - 'a' + 10;
    if (character >= 'A' && character <= 'F') return character - 'A' + 10;
    return -1;
}

unsigned toByte(double component) {
    return static_cast<unsigned>(std::lround(std::clamp(component, 0.0, 1.0) * 255));
}

}  // namespace

std::optional<Color> Color::fromHex(std::string_view text) {
    if ((text.size() != 7 && text.size() != 9) || text[0] != '#') return std::nullopt;
    int bytes[4] = {0, 0, 0, 255};
    for (std::size_t i = 1; i < text.size(); i += 2) {
        const int high = hexDigit(text[i]);
        const int low = hexDigit(text[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        bytes[i / 2] = high * 16 + low;
    }
    return Color{bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0, bytes[3] / 255.0};
}

std::string Color::hex() const {
    char text[10];
    std::snprintf(text, sizeof text, "#%02X%02X%02X%02X", toByte(red), toByte(green), toByte(blue),
                  toByte(alpha));
    return text;
}

bool equalColors(const ColorRef& a, const ColorRef& b) {
    if (!a || !b) return a == b;
    return *a == *b;
}

}  // namespace kalim::gfx
