#pragma once

#include <memory>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/PixelGrid.h"
#include "kalimkit/gfx/Size.h"

namespace kalim::gfx {

// How the raster has to be turned to be seen upright. The numbers are part of the interface. Left
// means that the raster is to be turned a quarter to the left (counter-clockwise), Right to the
// right; in the mirrored forms it is flipped horizontally before it is turned.
enum class ImageOrientation : int {
    Up = 0,
    Down = 1,
    Left = 2,
    Right = 3,
    UpMirrored = 4,
    DownMirrored = 5,
    LeftMirrored = 6,
    RightMirrored = 7,
};

// True for the orientations in which width and height change places: 2, 3, 6 and 7.
constexpr bool exchangesSides(ImageOrientation orientation) {
    return orientation == ImageOrientation::Left || orientation == ImageOrientation::Right ||
           orientation == ImageOrientation::LeftMirrored ||
           orientation == ImageOrientation::RightMirrored;
}

// Carries the raster, stretched over `seen` (its sides exchanged for a quarter turn) with row 0 at
// the top, to the upright picture that fills (0, 0) to `seen`. Any other number counts as Up.
KALIM_API AffineTransform uprightTransform(ImageOrientation orientation, Size seen);

// Pixels that a device keeps where it likes. Immutable and shared.
class KALIM_API Raster {
public:
    virtual ~Raster();
    virtual PixelSize size() const = 0;
    // The pixels for reading; a copy only where the device keeps them out of reach.
    virtual BitmapRef pixels() const = 0;
};

// A shared immutable handle to a raster with a scale (pixels per point) and an orientation. Images
// that differ only in these two share one raster.
class KALIM_API Image {
public:
    // A scale that is not a positive number counts as 1.
    Image(std::shared_ptr<const Raster> raster, double scale, ImageOrientation orientation,
          const PixelGrid& grid = {});

    const std::shared_ptr<const Raster>& raster() const { return _raster; }
    // The raster's own extent, before it is turned.
    PixelSize pixelSize() const { return _raster->size(); }
    double scale() const { return _scale; }
    ImageOrientation orientation() const { return _orientation; }
    // Points as seen: pixels divided by the scale, sides exchanged for a quarter turn.
    Size size() const;
    BitmapRef pixels() const { return _raster->pixels(); }
    // Which of the upright picture's pixels its file held together.
    const PixelGrid& grid() const { return _grid; }

private:
    std::shared_ptr<const Raster> _raster;
    double _scale;
    ImageOrientation _orientation;
    PixelGrid _grid;
};

using ImageRef = std::shared_ptr<const Image>;

}  // namespace kalim::gfx
