#include "kalimkit/theme/ColorName.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Of the brightest component, the range of the components, and the darkest one: what is darker, or
// greyer, has no hue to speak of.
constexpr double leastBrightness = 0.2;
constexpr double leastRange = 0.15;
constexpr double whiteFrom = 0.85;

struct Hue {
    // Degrees, where the next one begins.
    double end;
    const char* name;
};
constexpr Hue hues[] = {{15, "红色"},  {45, "橙色"},  {70, "黄色"},  {165, "绿色"},
                        {255, "蓝色"}, {290, "紫色"}, {340, "粉色"}, {360, "红色"}};

// Counts degrees from red by way of green and blue.
double hueOf(const gfx::Color& color, double highest, double range) {
    double sixths = 0;
    if (color.red == highest) {
        sixths = (color.green - color.blue) / range;
    } else if (color.green == highest) {
        sixths = 2 + (color.blue - color.red) / range;
    } else {
        sixths = 4 + (color.red - color.green) / range;
    }
    return std::fmod(sixths * 60 + 360, 360);
}

const char* nameOf(const gfx::Color& color) {
    const auto [lowest, highest] = std::minmax({color.red, color.green, color.blue});
    if (highest < leastBrightness) return "黑色";
    const double range = highest - lowest;
    if (range < leastRange) return lowest >= whiteFrom ? "白色" : "灰色";
    const double hue = hueOf(color, highest, range);
    return std::ranges::find_if(hues, [hue](const Hue& entry) { return hue < entry.end; })->name;
}

}  // namespace

std::string colorName(const gfx::ColorRef& color) {
    return color ? ui::Environment::current().localizedString(nameOf(*color)) : std::string();
}

}  // namespace kalim
