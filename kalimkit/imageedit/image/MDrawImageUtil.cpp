#include "kalimkit/imageedit/image/MDrawImageUtil.h"

#include <cmath>
#include <memory>
#include <numbers>
#include <utility>

#include "kalimkit/gfx/Raise.h"
#include "kalimkit/imageedit/image/UprightBitmap.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

namespace {

// In the flipped space of the resizing context: y grows upwards, the raster's first row is on top.
// Translations use the raster's size although the drawing uses the target's; callers rely on that
// pairing.
gfx::AffineTransform orientingTransform(gfx::ImageOrientation orientation, gfx::PixelSize raster) {
    constexpr double pi = std::numbers::pi;
    const double w = raster.width;
    const double h = raster.height;
    const gfx::AffineTransform none;
    switch (orientation) {
        case gfx::ImageOrientation::Up:
            return none;
        case gfx::ImageOrientation::Down:
            return none.translated(w, h).rotated(pi);
        case gfx::ImageOrientation::Left:
            return none.translated(0, w).rotated(3 * pi / 2);
        case gfx::ImageOrientation::Right:
            return none.translated(h, 0).rotated(pi / 2);
        case gfx::ImageOrientation::UpMirrored:
            return none.translated(w, 0).scaled(-1, 1);
        case gfx::ImageOrientation::DownMirrored:
            return none.translated(0, h).scaled(1, -1);
        case gfx::ImageOrientation::LeftMirrored:
            return none.translated(h, w).scaled(-1, 1).rotated(3 * pi / 2);
        case gfx::ImageOrientation::RightMirrored:
            return none.scaled(-1, 1).rotated(pi / 2);
    }
    raise("InternalInconsistencyException", "Invalid image orientation");
    return none;
}

double flooredInSinglePrecision(double length) {
    return static_cast<double>(std::floor(static_cast<float>(length)));
}

// Draws a raster into a rectangle at the origin of a space whose y axis points up.
void drawRasterUpwards(gfx::Context& context, const gfx::Image& image, gfx::Size size) {
    gfx::GraphicsStateGuard guard(context);
    context.translate(0, size.height);
    context.scale(1, -1);
    context.drawRaster(image, {{}, size});
}

}  // namespace

gfx::ImageRef MDrawImageUtil::resizedImageToSize(const gfx::ImageRef& image, gfx::Size size) {
    if (!image) return nullptr;
    const gfx::PixelSize raster = image->pixelSize();
    if (size == gfx::Size{static_cast<double>(raster.width), static_cast<double>(raster.height)}) {
        return image;
    }
    gfx::Size target{flooredInSinglePrecision(size.width), flooredInSinglePrecision(size.height)};
    const gfx::ImageOrientation orientation = image->orientation();
    if (gfx::exchangesSides(orientation)) std::swap(target.width, target.height);
    ui::Environment& environment = ui::Environment::current();
    const std::shared_ptr<gfx::Surface> surface =
        environment.device().makeSurface(target, environment.screen().scale, false);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.setInterpolation(gfx::Interpolation::High);
    // Only the unmirrored quarter turns are flipped sideways; deliberate.
    if (orientation == gfx::ImageOrientation::Left || orientation == gfx::ImageOrientation::Right) {
        context.scale(-1, 1);
        context.translate(-target.height, 0);
    } else {
        context.scale(1, -1);
        context.translate(0, -target.height);
    }
    context.concat(orientingTransform(orientation, raster));
    drawRasterUpwards(context, *image, target);
    return surface->makeImage();
}

gfx::ImageRef MDrawImageUtil::resizedImageToFitInSizeScaleIfSmaller(const gfx::ImageRef& image,
                                                                    gfx::Size box,
                                                                    bool scaleIfSmaller) {
    if (!image) return nullptr;
    const double width = image->pixelSize().width;
    const double height = image->pixelSize().height;
    if (gfx::exchangesSides(image->orientation())) std::swap(box.width, box.height);
    if (width < box.width && !scaleIfSmaller && height < box.height) {
        return resizedImageToSize(image, {width, height});
    }
    if (box.height / height <= box.width / width) {
        return resizedImageToSize(image, {width * box.height / height, box.height});
    }
    return resizedImageToSize(image, {box.width, height * box.width / width});
}

gfx::ImageRef MDrawImageUtil::fixOrientation(const gfx::ImageRef& image) {
    if (!image || image->orientation() == gfx::ImageOrientation::Up) return image;
    return ui::Environment::current().device().makeImage(
        uprightBitmap(*image->pixels(), image->orientation()), image->scale(),
        gfx::ImageOrientation::Up);
}

}  // namespace kalim
