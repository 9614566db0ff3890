#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim::gfx {

// Components are straight (not premultiplied) sRGB, each 0 to 1.
struct KALIM_API Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;

    bool operator==(const Color&) const = default;
    Color withAlpha(double value) const { return {red, green, blue, value}; }

    // Reads "#RRGGBB" or "#RRGGBBAA", either case of digit; nothing for any other text.
    static std::optional<Color> fromHex(std::string_view text);
    // Writes "#RRGGBBAA" in upper case; components are clamped and rounded to bytes.
    std::string hex() const;
};

// A colour with an identity: two tools share a colour only when they hold the same object.
using ColorRef = std::shared_ptr<const Color>;

inline ColorRef makeColor(double red, double green, double blue, double alpha = 1) {
    return std::make_shared<const Color>(Color{red, green, blue, alpha});
}
inline ColorRef makeColor(const Color& color) {
    return std::make_shared<const Color>(color);
}

// Compares by value; two absent colours are equal.
KALIM_API bool equalColors(const ColorRef& a, const ColorRef& b);

}  // namespace kalim::gfx
