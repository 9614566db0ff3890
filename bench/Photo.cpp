#include "bench/Photo.h"

#include <cmath>
#include <cstdint>

namespace kalim::bench {

gfx::Bitmap photo() {
    gfx::Bitmap bitmap(photoSize.width, photoSize.height);
    std::uint32_t state = 1;
    for (int y = 0; y < photoSize.height; ++y) {
        std::uint8_t* pixel = bitmap.row(y);
        const double down = 60 * std::sin(y / 230.0);
        for (int x = 0; x < photoSize.width; ++x, pixel += 4) {
            state = state * 1664525 + 1013904223;
            const int grain = static_cast<int>(state >> 29);
            const int shade = static_cast<int>(120 + down + 0.015 * x) + grain;
            pixel[0] = static_cast<std::uint8_t>(shade - 20);
            pixel[1] = static_cast<std::uint8_t>(shade);
            pixel[2] = static_cast<std::uint8_t>(shade + 15);
            pixel[3] = 255;
        }
    }
    return bitmap;
}

}  // namespace kalim::bench
