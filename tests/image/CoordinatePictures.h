#pragma once

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Image.h"
#include "tests/support/TestHost.h"

namespace kalim::test {

// Every pixel its own colour: blue holds the column, green the row.
inline gfx::Bitmap coordinates(int width, int height) {
    gfx::Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            std::uint8_t* pixel = bitmap.row(y) + x * 4;
            pixel[0] = static_cast<std::uint8_t>(x);
            pixel[1] = static_cast<std::uint8_t>(y);
            pixel[3] = 255;
        }
    }
    return bitmap;
}

inline gfx::ImageRef coordinatePicture(
    TestHost& host, int width, int height, double scale = 1,
    gfx::ImageOrientation orientation = gfx::ImageOrientation::Up) {
    return host.environment().device().makeImage(coordinates(width, height), scale, orientation);
}

}  // namespace kalim::test
