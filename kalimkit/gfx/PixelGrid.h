#pragma once

#include "kalimkit/gfx/Size.h"

namespace kalim::gfx {

// Which pixels of a picture its file holds together, so that none of them tells nothing of the
// others: the cells of a grid, and so many pixels beside each that a decoder smooths with it. As it
// stands at first, every pixel is on its own.
struct PixelGrid {
    PixelSize cell{1, 1};
    // A corner of a cell lies there; below 0 where the grid begins outside of the picture.
    int x = 0;
    int y = 0;
    int reach = 0;

    bool operator==(const PixelGrid&) const = default;
};

}  // namespace kalim::gfx
