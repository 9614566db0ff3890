#pragma once

#include "kalimkit/backend/cairo/PangoText.h"
#include "kalimkit/backend/cairo/ShadowMask.h"

namespace kalim::gfx {

// What a device shares with everything that it made, and keeps alive as long as any of it.
struct CairoResources {
    PangoText text;
    ShadowMemory shadows;
};

}  // namespace kalim::gfx
