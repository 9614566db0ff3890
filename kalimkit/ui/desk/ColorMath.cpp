#include "kalimkit/ui/desk/ColorMath.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/gfx/text/PlainText.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

namespace {

constexpr const char* recentKey = "recentColors";
constexpr std::size_t shortDigits = 3;
constexpr std::size_t opaqueDigits = 6;

}  // namespace

HueColor hueColorOf(const gfx::Color& color, const HueColor& before) {
    const double most = std::max({color.red, color.green, color.blue});
    const double least = std::min({color.red, color.green, color.blue});
    const double range = most - least;
    HueColor result{before.hue, before.saturation, most, color.alpha};
    if (most > 0) result.saturation = range / most;
    if (range <= 0) return result;
    double sixth = 0;
    if (most == color.red) {
        sixth = (color.green - color.blue) / range;
    } else if (most == color.green) {
        sixth = 2 + (color.blue - color.red) / range;
    } else {
        sixth = 4 + (color.red - color.green) / range;
    }
    result.hue = sixth / 6 - std::floor(sixth / 6);
    // The end of the strip is red as its beginning is.
    if (result.hue == 0 && before.hue == 1) result.hue = 1;
    return result;
}

gfx::Color colorOf(const HueColor& color) {
    const auto component = [&](double place) {
        const double sixth = std::fmod(place + color.hue * 6, 6);
        const double share = std::clamp(std::min(sixth, 4 - sixth), 0.0, 1.0);
        return color.value - color.value * color.saturation * share;
    };
    return {component(5), component(3), component(1), color.alpha};
}

std::optional<gfx::Color> colorWritten(std::string_view text) {
    text = gfx::trimmed(text);
    if (text.starts_with('#')) text.remove_prefix(1);
    std::string digits = "#";
    for (const char digit : text)
        digits.append(text.size() == shortDigits ? 2 : 1, digit);
    return gfx::Color::fromHex(digits);
}

std::string writtenColor(const gfx::Color& color) {
    std::string text = color.hex();
    if (text.ends_with("FF")) text.resize(1 + opaqueDigits);
    return text;
}

std::vector<gfx::Color> recentColors() {
    const std::string kept = Environment::current().userSetting(recentKey).value_or("");
    std::vector<gfx::Color> colors;
    std::string_view rest = kept;
    while (!rest.empty() && colors.size() < mostRecentColors) {
        const std::size_t end = std::min(rest.find(' '), rest.size());
        if (const auto color = gfx::Color::fromHex(rest.substr(0, end))) colors.push_back(*color);
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return colors;
}

void rememberColor(const gfx::Color& color) {
    std::vector<gfx::Color> colors = recentColors();
    std::erase_if(colors, [&](const gfx::Color& each) { return each.hex() == color.hex(); });
    colors.insert(colors.begin(), color);
    colors.resize(std::min(colors.size(), mostRecentColors));
    std::string kept;
    for (const gfx::Color& each : colors)
        kept += (kept.empty() ? "" : " ") + each.hex();
    Environment::current().setUserSetting(recentKey, kept);
}

}  // namespace kalim::ui
