#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Size.h"

namespace kalim {

// Operations on images, without state. They draw with the current environment's device and screen
// scale. A null image yields null.
class KALIM_API MDrawImageUtil {
public:
    // The image redrawn upright. The target is compared with the raster's size in pixels, and the
    // very same image is returned where both sides agree; otherwise the result is that many points
    // large (rounded down) at the screen's scale. Null where no surface of that size can be had. An
    // orientation above 7 raises "InternalInconsistencyException" and then counts as upright.
    static gfx::ImageRef resizedImageToSize(const gfx::ImageRef& image, gfx::Size size);

    // As above, at the largest size of the same aspect that fits into the box. An image whose
    // raster is smaller than the box both ways is only enlarged when asked to.
    static gfx::ImageRef resizedImageToFitInSizeScaleIfSmaller(const gfx::ImageRef& image,
                                                               gfx::Size box, bool scaleIfSmaller);

    // The same picture with its pixels turned so that it needs no orientation; exact, at the same
    // scale. The very same image when it is upright already.
    static gfx::ImageRef fixOrientation(const gfx::ImageRef& image);
};

}  // namespace kalim
