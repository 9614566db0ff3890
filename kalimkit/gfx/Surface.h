#pragma once

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim::gfx {

// An off-screen drawing area. Its pixel size is the size in points times the scale, rounded up.
class KALIM_API Surface {
public:
    virtual ~Surface();

    virtual PixelSize pixelSize() const = 0;
    // Tells how many pixels make a point.
    virtual double scale() const = 0;
    virtual bool isOpaque() const = 0;
    // The surface's one context; it lives as long as the surface.
    virtual Context& context() = 0;
    // A picture of what is drawn so far, upright and at the surface's scale. Later drawing does not
    // change it.
    virtual ImageRef makeImage() = 0;
};

}  // namespace kalim::gfx
