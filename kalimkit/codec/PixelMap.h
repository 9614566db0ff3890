#pragma once

#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/PixelRect.h"
#include "kalimkit/gfx/Size.h"

namespace kalim::codec {

// Carries pixels from one raster to another by quarter turns, mirroring and whole pixels. The
// numbers are those of an affine transform of the pixels' corners: x' = xx * x + xy * y + dx.
struct PixelMap {
    int xx = 1;
    int xy = 0;
    int yx = 0;
    int yy = 1;
    int dx = 0;
    int dy = 0;

    // From the stored pixels of a picture to the upright ones, whose extent is `seen`.
    static PixelMap upright(gfx::ImageOrientation orientation, gfx::PixelSize seen);
    // Turns a raster of this extent counter-clockwise.
    static PixelMap turned(int quarterTurns, gfx::PixelSize size);
    static PixelMap moved(int x, int y) { return {1, 0, 0, 1, x, y}; }

    bool operator==(const PixelMap&) const = default;
    // First this one, then the other.
    PixelMap then(const PixelMap& next) const;
    PixelMap inverse() const;
    bool exchangesSides() const { return xx == 0; }

    // The pixel whose corner lies at x and y.
    int pixelX(int x, int y) const { return xx * x + xy * y + dx - (xx + xy < 0 ? 1 : 0); }
    int pixelY(int x, int y) const { return yx * x + yy * y + dy - (yx + yy < 0 ? 1 : 0); }
    gfx::PixelRect apply(const gfx::PixelRect& rect) const;
};

// The size itself where it does not exchange them.
gfx::PixelSize withExchangedSides(gfx::PixelSize size, bool exchanges);

gfx::PixelRect intersection(const gfx::PixelRect& first, const gfx::PixelRect& second);

}  // namespace kalim::codec
