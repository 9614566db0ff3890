#pragma once

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

// Whether a picture of a known kind begins anywhere in the bytes: JPEG, also with another first
// byte, PNG, WebP, JPEG 2000, HEIF with its relatives.
bool holdsPicture(ByteSpan bytes);

// Makes pictures in a maker's note zeros, because what stands behind them has to stay in place.
void blankPictures(Bytes& note);

}  // namespace kalim::codec
