#pragma once

#include <optional>
#include <string>
#include <vector>

#include "cli/PictureFormat.h"
#include "cli/PictureWriting.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim::cli {

struct RedactOptions {
    enum class Style { Sealed, Solid, Blur, Mosaic };

    // "-" stands for standard input.
    std::string input;
    // "-" stands for standard output.
    std::string output;
    // Nothing: as the output is called, or as the input is where that has no name.
    std::optional<PictureFormat> format;
    // Pixels of the upright picture.
    std::vector<gfx::Rect> rects;
    Style style = Style::Sealed;
    // Of Solid.
    gfx::ColorRef color = gfx::makeColor(0, 0, 0);
    PictureWriting writing;
};

// "sealed", "solid", "blur" or "mosaic"; answers with nothing or with what is wrong.
std::string readRedactStyle(const std::string& text, RedactOptions::Style& style);

// Runs `kalimkit redact`: hides parts of a picture and writes it. Complains on standard error. The
// exit status.
int redact(const RedactOptions& options);

}  // namespace kalim::cli
