#pragma once

#include "fuzz/Fuzzing.h"
#include "kalimkit/codec/ColorProfile.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/PersonalTraces.h"
#include "kalimkit/codec/Saving.h"

namespace kalim::fuzz {

// Small, so that a run takes no longer than the file that is read deserves.
inline constexpr codec::DecodeLimits smallPictures{
    .maxSide = 512, .maxPixels = 1 << 16, .maxFileBytes = 1 << 20};

// All that is read of a picture's file before anybody draws on it.
inline void readPicture(Input file) {
    const codec::DecodeResult decoded = codec::decode(file, "picture", smallPictures);
    require(decoded.error.has_value() == decoded.bitmap.isEmpty(),
            "there is a picture or an error");
    codec::colorProfileName(file);
    codec::personalTraces(file);
    codec::pixelGrid(file);
}

}  // namespace kalim::fuzz
