#pragma once

#include <array>
#include <cstdint>
#include <cstdio>

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec {

// What a JPEG's colour has for a pixel (blue, green, red, alpha, premultiplied, over white), from
// its middle. It is a whole number: of pixels that were decoded this makes the samples that they
// came from.
inline float sampleOf(const std::uint8_t* bgra, J_COLOR_SPACE space, int colour) {
    // Shares of blue, green and red; the middle is 128 where they do not cancel out (ITU-T T.871).
    struct Shares {
        float blue;
        float green;
        float red;
        float middle;
    };
    static constexpr std::array<Shares, 3> luminanceAndColour{
        Shares{0.114F, 0.587F, 0.299F, 128}, Shares{0.5F, -0.331264108F, -0.168735892F, 0},
        Shares{-0.081312411F, -0.418687589F, 0.5F, 0}};
    static constexpr std::array<Shares, 3> redGreenBlue{Shares{0, 0, 1, 128}, Shares{0, 1, 0, 128},
                                                        Shares{1, 0, 0, 128}};
    const Shares& shares =
        (space == JCS_RGB ? redGreenBlue : luminanceAndColour)[static_cast<std::size_t>(colour)];
    const int white = 255 - bgra[3];
    const float sample = shares.blue * static_cast<float>(bgra[0] + white) +
                         shares.green * static_cast<float>(bgra[1] + white) +
                         shares.red * static_cast<float>(bgra[2] + white);
    // Above 0, where a cast rounds down.
    constexpr float shift = 256.5F;
    return static_cast<float>(static_cast<int>(sample + shift)) - 256 - shares.middle;
}

}  // namespace kalim::codec
