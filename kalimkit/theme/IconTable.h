#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace kalim {

// What an icon's drawing is made of. Each step is followed by its numbers: lengths and places in
// hundredths of a point, colours as red, green and blue of 0 to 255, opacities in hundredths.
enum IconStep : std::int16_t {
    IconMove,    // x, y
    IconLine,    // x, y
    IconCubic,   // both controls, the end
    IconClose,   //
    IconRect,    // x, y, width, height
    IconCircle,  // centre, radius
    // These paint the path that the steps before have built, and start the next one.
    IconFill,    // colour, opacity
    IconStroke,  // colour, opacity, width; round caps and joins
    IconFade,    // colour, number of stops, their places from top to bottom in hundredths, each
                 // with its opacity
};

struct Icon {
    std::string_view name;
    // Width and height are points.
    std::int16_t width;
    std::int16_t height;
    std::span<const std::int16_t> steps;
};

// Lists all icons by name. cmake/icons.cmake writes it from kalimkit/resources.
std::span<const Icon> frameworkIcons();

}  // namespace kalim
