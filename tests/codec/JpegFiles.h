#pragma once

#include <array>
#include <string>
#include <vector>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Bitmap.h"

namespace kalim::codec::test {

// A JPEG of a coloured pattern.
struct PatternRecipe {
    int width = 100;
    int height = 76;
    // Samples across and down of each colour: "2x1 1x1 1x1" is 4:2:2. One colour is grey.
    std::string sampling = "2x2 1x1 1x1";
    bool isRgb = false;
    bool isProgressive = false;
    bool isArithmetic = false;
    // Ends before the last bits.
    bool lacksBits = false;
    unsigned restartInterval = 0;
    // 1 to 8, put into an Exif block.
    std::uint16_t orientation = 1;
    int quality = 85;
    // Where the pattern is another one; nothing without a size.
    int otherX = 0;
    int otherY = 0;
    int otherSide = 0;
};
Bytes makePattern(const PatternRecipe& recipe);

// What a JPEG holds before anything is made of it.
struct JpegFacts {
    struct Colour {
        int across = 0;
        int down = 0;
        int blocksAcross = 0;
        std::array<unsigned, 64> table{};
        // Row by row, as many as are seen.
        std::vector<std::array<short, 64>> blocks;
        bool operator==(const Colour&) const = default;
    };
    bool isProgressive = false;
    unsigned restartInterval = 0;
    int space = 0;
    std::vector<Colour> colours;
    bool operator==(const JpegFacts&) const = default;
};
JpegFacts factsOf(const Bytes& file);

}  // namespace kalim::codec::test
