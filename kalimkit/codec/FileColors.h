#pragma once

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/codec/ColorConversion.h"
#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::codec {

// What a picture's file says about its colours.
struct FileColors {
    // That of its samples; empty where it has none, or none that is whole and fits them.
    Bytes profile;
    ColorConversion::Samples samples = ColorConversion::Samples::Bgra;
    // Every sample is kept as it was given, as a PNG and some WebP files do.
    bool isLossless = false;
};

// Says nothing of a file whose header cannot be read.
FileColors fileColors(ByteSpan file);

// A picture's samples before anything is converted: blue, green, red and straight alpha. 16 bits
// become 8, and what is ink becomes sRGB.
struct RawPicture {
    // As stored in the file; empty where it cannot be read.
    gfx::Bitmap bitmap;
    gfx::ImageOrientation orientation = gfx::ImageOrientation::Up;
};
RawPicture rawPicture(ByteSpan file);

}  // namespace kalim::codec
