#pragma once

#include <optional>

#include "kalimkit/gfx/Rect.h"

namespace kalim {

// Which part of an upright picture is shown, and how it is turned: geometry alone, no pixel of the
// picture changes. The crop comes first, then the turns.
struct PictureCut {
    // Pixels of the upright picture before any cut: whole numbers, not empty, inside the picture.
    // Nothing where all of it is shown.
    std::optional<gfx::Rect> crop;
    // Counter-clockwise, 0 to 3.
    int quarterTurns = 0;

    bool operator==(const PictureCut&) const = default;
};

}  // namespace kalim
