#pragma once

#include "kalimkit/backend/cairo/CairoHandles.h"
#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::gfx {

// A raster in memory that Cairo reads in place.
class CairoRaster : public Raster {
public:
    // `isOpaque` promises that every pixel's alpha is 255.
    explicit CairoRaster(BitmapRef pixels, bool isOpaque = false);
    // The raster of an image, wrapped when another device made it.
    static std::shared_ptr<const CairoRaster> of(const Image& image);

    PixelSize size() const override { return _pixels->size(); }
    BitmapRef pixels() const override { return _pixels; }

    // What to draw from, and the transform of its pixels to those of the raster. The surface keeps
    // the pixels alive.
    struct Source {
        SurfaceHandle surface;
        AffineTransform toRaster;
    };
    // For painting so many raster pixels to a device pixel in each direction. A strong reduction is
    // averaged first, to between one and two pixels to the device pixel, and the result is kept
    // until another one is asked for.
    Source source(double shrinkX, double shrinkY, Interpolation interpolation) const;

private:
    Source reduced(PixelSize size) const;

    BitmapRef _pixels;
    bool _isOpaque;
    // Null for a raster with a side that Cairo cannot hold; it is only drawn reduced.
    SurfaceHandle _surface;
    mutable SurfaceHandle _reduced;
    mutable PixelSize _reducedSize;
};

}  // namespace kalim::gfx
