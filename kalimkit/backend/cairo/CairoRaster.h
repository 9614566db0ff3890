#pragma once

#include "kalimkit/backend/cairo/CairoHandles.h"
#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::gfx {

// A raster in memory that Cairo reads in place.
class CairoRaster : public Raster {
public:
    // `isOpaque` promises that every pixel's alpha is 255; a small picture is looked at as well.
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
    // For painting with this many raster pixels, at least 1, averaged to one in each direction.
    // What was averaged is kept until other factors are asked for.
    Source source(double factorX, double factorY) const;

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
