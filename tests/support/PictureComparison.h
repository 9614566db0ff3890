#pragma once

#include <string>
#include <vector>

#include "kalimkit/gfx/Bitmap.h"

namespace kalim::test {

// A tile of at most 16x16 pixels in which two pictures differ, in pixels.
struct TileDifference {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    // The mean absolute difference of the channel that differs most, 0 to 255.
    double mean = 0;
    // The share of the pixels that differ strongly in some channel, 0 to 1.
    double strongShare = 0;
};

// Two pictures held against each other tile by tile, so that a small missing thing counts in a
// large picture, while antialiasing that comes out a little differently does not.
struct PictureComparison {
    // Of different sizes, pictures are not compared any further.
    bool sameSize = false;
    std::vector<TileDifference> tiles;
    // What differs, tile by tile, in words; empty when nothing does.
    std::string message;

    bool matches() const { return sameSize && tiles.empty(); }
};

PictureComparison comparePictures(const gfx::Bitmap& expected, const gfx::Bitmap& actual);

}  // namespace kalim::test
