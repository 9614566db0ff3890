#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

// Turns rows of a picture's own colours into sRGB, as the profile in its file describes them, or
// the other way round.
class ColorConversion {
public:
    // How the bytes of a row are to be understood, four to a pixel.
    enum class Samples {
        // Blue, green, red, alpha; alpha is straight.
        Bgra,
        // The same, but all three colours are alike.
        GreyBgra,
        // Cyan, magenta, yellow, black: how much ink there is, or how much of it is missing.
        Ink,
        MissingInk,
    };

    // Nothing where the samples can stand as they are: the profile is empty, says what sRGB says,
    // is broken, or belongs to another kind of samples.
    static std::unique_ptr<ColorConversion> make(ByteSpan profile, Samples samples);
    // From sRGB to a profile of three colours, four bytes to a pixel; nothing where that is broken
    // or knows no such way.
    static std::unique_ptr<ColorConversion> makeBack(ByteSpan profile);
    // Whether the profile is whole and one of such samples.
    static bool fits(ByteSpan profile, Samples samples);
    ~ColorConversion();
    ColorConversion(const ColorConversion&) = delete;
    ColorConversion& operator=(const ColorConversion&) = delete;

    // Writes blue, green and red and leaves alpha. The rows may be one and the same.
    void convertRow(const std::uint8_t* samples, std::uint8_t* bgra, std::size_t pixelCount) const;

private:
    enum class Direction { ToSrgb, FromSrgb };
    static std::unique_ptr<ColorConversion> makeAny(ByteSpan profile, Samples samples,
                                                    Direction direction);
    ColorConversion() = default;
    bool changesColors(Samples samples) const;

    // The library's handle is owned here.
    void* _transform = nullptr;
};

}  // namespace kalim::codec
