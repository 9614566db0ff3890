#pragma once

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

// Profiles that are made here have the same bytes every time.

// Says sRGB: of three colours, or of grey alone.
Bytes srgbProfile(bool isGrey);
// A profile of three colours in which equal ones are what they are in a profile of grey; empty
// where that says nothing of how light its greys are.
Bytes colorfulProfile(ByteSpan greyProfile);

// What a profile says, written anew: lengths and places are in order then. Empty for a broken one.
Bytes tidiedProfile(ByteSpan profile);

// Puts a profile into a JPEG or WebP file that has none.
void addProfile(Bytes& file, ByteSpan profile);

}  // namespace kalim::codec
