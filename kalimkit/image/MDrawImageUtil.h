#pragma once

#include <cstdint>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/gfx/Size.h"

namespace kalim {

// Operations on images, without state. They draw with the current environment's device and screen
// scale. A null image yields null.
class KALIM_API MDrawImageUtil {
public:
    // A part of the raster, in its pixels: the rectangle is rounded outwards to whole pixels and
    // cut at the raster. The result has scale 1 and is upright; the image's own scale and
    // orientation are deliberately not carried over. Null where nothing of the raster is left.
    static gfx::ImageRef imageFromImageInRect(const gfx::ImageRef& image, const gfx::Rect& rect);
    // The pixels that the operation above takes out of a raster of this size; empty for none.
    static gfx::Rect pixelsInRect(gfx::PixelSize raster, const gfx::Rect& rect);

    // A part of the picture as it is seen, in points, with the image's scale and orientation. The
    // very same image for a rectangle at least as large as it, null for the zero rectangle. The
    // rectangle is only turned for the unmirrored orientations; mirrored ones are cut as if
    // upright.
    static gfx::ImageRef cropImageToRect(const gfx::ImageRef& image, const gfx::Rect& rect);

    // The image redrawn upright. The target is compared with the raster's size in pixels, and the
    // very same image is returned where both sides agree; otherwise the result is that many points
    // large (rounded down) at the screen's scale. Null where no surface of that size can be had. An
    // orientation above 7 raises "InternalInconsistencyException" and then counts as upright.
    // `screenScale` stands in for the screen's, where it is above 0.
    static gfx::ImageRef resizedImageToSize(const gfx::ImageRef& image, gfx::Size size,
                                            double screenScale = 0);

    // As above, at the largest size of the same aspect that fits into the box. An image whose
    // raster is smaller than the box both ways is only enlarged when asked to.
    static gfx::ImageRef resizedImageToFitInSizeScaleIfSmaller(const gfx::ImageRef& image,
                                                               gfx::Size box, bool scaleIfSmaller,
                                                               double screenScale = 0);

    // The image in square blocks of `level` raster pixels, each in the mean colour of what it
    // covers (see Pixelation.h). Upright raster order, opaque, at the image's scale: one raster
    // pixel becomes one point. Null for a level below 1.
    static gfx::ImageRef mosiacImageMosaicLevel(const gfx::ImageRef& image, std::int32_t level);

    // Draws the pixelated image at the image's size in the middle of the rectangle, carried through
    // the transform, on an opaque picture of the pixelated image's size at the screen's scale.
    static gfx::ImageRef mosiacImageMosaicLevelBoundsTransform(
        const gfx::ImageRef& image, std::int32_t level, const gfx::Rect& bounds,
        const gfx::AffineTransform& transform);

    // An already pixelated image placed in the same way as its source would be, on an opaque
    // picture of the rectangle's size at the screen's scale.
    static gfx::ImageRef mosiacImageFittoSizeSrcImgBoundsTransform(
        const gfx::ImageRef& mosaic, const gfx::ImageRef& source, const gfx::Rect& bounds,
        const gfx::AffineTransform& transform);

    // The same picture with its pixels turned so that it needs no orientation; exact, at the same
    // scale. The very same image when it is upright already.
    static gfx::ImageRef fixOrientation(const gfx::ImageRef& image);
};

}  // namespace kalim
