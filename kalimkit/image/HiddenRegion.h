#pragma once

#include <optional>
#include <span>

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/PixelGrid.h"
#include "kalimkit/gfx/PixelRect.h"
#include "kalimkit/gfx/Polygon.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"

namespace kalim {

// A part of a picture that is hidden for certain, pixels of the upright picture.
struct HiddenRegion {
    // They may overlap.
    gfx::PixelRects rects;
    // What is seen there; nothing for sealed blocks.
    std::optional<gfx::Color> solid;

    bool operator==(const HiddenRegion&) const = default;
};

// Every pixel of a picture of this size that the rectangle, pixels, touches, with all that its
// file holds together with them: nothing outside tells of what is inside. An edge within a
// millionth of a pixel's border counts as on it. Empty where the rectangle is beside the picture.
KALIM_API gfx::PixelRect grownToGrid(const gfx::Rect& rect, const gfx::PixelGrid& grid,
                                     gfx::PixelSize picture);

// The same for a convex area, pixels: by rows of the grid's cells, from the top.
KALIM_API gfx::PixelRects grownToGrid(const gfx::Polygon& area, const gfx::PixelGrid& grid,
                                      gfx::PixelSize picture);

// Overwrites the regions in the pixels, each over those before it. `sealed` has the sealed blocks'
// colours, see SealedBlocks.h; empty is enough where no region is sealed.
KALIM_API void hideRegions(gfx::Bitmap& picture, std::span<const HiddenRegion> regions,
                           const gfx::Bitmap& sealed, int level);

}  // namespace kalim
