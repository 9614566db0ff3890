#pragma once

#include <optional>

#include "kalimkit/backend/cairo/PangoText.h"
#include "kalimkit/backend/cairo/ShadowMask.h"

namespace kalim::gfx {

// What a device shares with everything that it made, and keeps alive as long as any of it.
class CairoResources {
public:
    // Loaded with the first text: most pictures have none, and looking for fonts takes longer than
    // drawing them.
    PangoText& text() {
        if (!_text) _text.emplace();
        return *_text;
    }
    ShadowMemory shadows;

private:
    std::optional<PangoText> _text;
};

}  // namespace kalim::gfx
