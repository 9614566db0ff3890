#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

// A colour as people pick it; each is 0 to 1, the hue of red being 0 and of green a third.
struct HueColor {
    double hue = 0;
    double saturation = 0;
    double value = 0;
    double alpha = 1;

    bool operator==(const HueColor&) const = default;
};

// Grey has no hue and black no saturation either: both take the one that is given.
KALIM_API HueColor hueColorOf(const gfx::Color& color, const HueColor& before = {});
KALIM_API gfx::Color colorOf(const HueColor& color);

// Reads what people write for a colour: "#RGB", "#RRGGBB" or "#RRGGBBAA", with "#" or without, and
// white space around it. Nothing for any other text.
KALIM_API std::optional<gfx::Color> colorWritten(std::string_view text);
// Writes "#RRGGBB", and "#RRGGBBAA" for one that is not opaque.
KALIM_API std::string writtenColor(const gfx::Color& color);

// The colours that the user has picked lately, the last one first, kept in the environment's
// settings.
constexpr std::size_t mostRecentColors = 8;
KALIM_API std::vector<gfx::Color> recentColors();
KALIM_API void rememberColor(const gfx::Color& color);

}  // namespace kalim::ui
