#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "kalimkit/gfx/Color.h"

namespace kalim::gfx {

// A colour as it crosses to the page: 0xRRGGBBAA, straight.
inline std::uint32_t packedColor(const Color& color) {
    std::uint32_t packed = 0;
    for (const double component : {color.red, color.green, color.blue, color.alpha}) {
        // What is no number is taken for 0.
        const double share = component > 0 ? std::min(component, 1.0) : 0;
        packed = packed << 8U | static_cast<std::uint32_t>(std::lround(share * 255));
    }
    return packed;
}

inline ColorRef unpackedColor(std::uint32_t packed) {
    const auto component = [&](unsigned shift) { return (packed >> shift & 255U) / 255.0; };
    return makeColor(component(24), component(16), component(8), component(0));
}

}  // namespace kalim::gfx
