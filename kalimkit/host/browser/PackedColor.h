#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "kalimkit/gfx/Color.h"

namespace kalim {

// A colour as it crosses to the page: 0xRRGGBBAA, straight.
inline std::uint32_t packedColor(const gfx::Color& color) {
    std::uint32_t packed = 0;
    for (const double component : {color.red, color.green, color.blue, color.alpha}) {
        packed = packed << 8U |
                 static_cast<std::uint32_t>(std::lround(std::clamp(component, 0.0, 1.0) * 255));
    }
    return packed;
}

inline gfx::ColorRef unpackedColor(std::uint32_t packed) {
    const auto component = [&](unsigned shift) { return (packed >> shift & 255U) / 255.0; };
    return gfx::makeColor(component(24), component(16), component(8), component(0));
}

}  // namespace kalim
