#pragma once

#include "kalimkit/gfx/Bitmap.h"

namespace kalim::bench {

inline constexpr gfx::PixelSize photoSize{3000, 4000};

// 12 opaque megapixels, upright, that compress about as a photo does: soft shades under a fine
// grain.
gfx::Bitmap photo();

}  // namespace kalim::bench
