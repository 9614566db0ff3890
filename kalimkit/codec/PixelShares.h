#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec {

// What a JPEG's colour takes from a pixel, in parts of 65536 (ITU-T T.871).
struct PixelShares {
    int blue = 0;
    int green = 0;
    int red = 0;
    int offset = 0;

    static PixelShares of(J_COLOR_SPACE space, int colour) {
        // Halves are rounded up, those of colour differences down, as everybody does.
        constexpr int half = 1 << 15;
        constexpr int difference = (128 << 16) + half - 1;
        static constexpr std::array<PixelShares, 3> luminanceAndColour{
            PixelShares{7471, 38470, 19595, half}, PixelShares{half, -21709, -11059, difference},
            PixelShares{-5329, -27439, half, difference}};
        static constexpr std::array<PixelShares, 3> redGreenBlue{PixelShares{0, 0, 1 << 16, 0},
                                                                 PixelShares{0, 1 << 16, 0, 0},
                                                                 PixelShares{1 << 16, 0, 0, 0}};
        return (space == JCS_RGB ? redGreenBlue
                                 : luminanceAndColour)[static_cast<std::size_t>(colour)];
    }

    // Of blue, green, red, alpha, premultiplied, over white; the middle of the range is 0. It is a
    // whole number: of pixels that were decoded this makes the samples that they came from.
    int sample(const std::uint8_t* bgra) const {
        const int white = 255 - bgra[3];
        const int sum =
            blue * (bgra[0] + white) + green * (bgra[1] + white) + red * (bgra[2] + white) + offset;
        return (sum >> 16) - 128;
    }
};

}  // namespace kalim::codec
