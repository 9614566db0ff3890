#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/PixelRect.h"

namespace kalim::test {

// A file that there are two of: they differ only in what is hidden.
struct PairSource {
    std::string name;
    // The first file, or the other one.
    std::function<codec::Bytes(bool isOther)> make;
    // Where they differ at most, pixels of the upright picture.
    gfx::PixelRect secret;
    bool isJpeg = false;
};

// PNG, WebP and JPEG of all kinds, with thumbnails of the secret, profiles and transparency.
std::vector<PairSource> pairSources();

}  // namespace kalim::test
