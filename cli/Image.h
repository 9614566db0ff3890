#pragma once

#include <cstdint>
#include <string>

#include "cli/PictureWriting.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"

namespace kalim::cli {

struct ImageOptions {
    enum class Operation { Pixelate, Fit, Crop, Turn };

    Operation operation = Operation::Pixelate;
    // "-" stands for standard input and output.
    std::string input;
    std::string output;
    // Pixelate takes the side of a block in pixels.
    std::int32_t level = 20;
    // Fit: the box in pixels, and whether a smaller picture is enlarged to it.
    gfx::Size size;
    bool enlarge = false;
    // Crop takes a rectangle in pixels of the upright picture, and pixelate may: empty for all.
    gfx::Rect rect;
    // Turn: clockwise, any number.
    int quarters = 1;
    PictureWriting writing;
};

// Runs `kalimkit image`: reads a picture, turns it upright, works on it and writes it. Complains on
// standard error. The exit status.
int image(const ImageOptions& options);

}  // namespace kalim::cli
