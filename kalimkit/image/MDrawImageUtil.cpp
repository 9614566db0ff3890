#include "kalimkit/image/MDrawImageUtil.h"

#include <cmath>
#include <cstddef>
#include <cstring>
#include <memory>
#include <numbers>
#include <utility>

#include "kalimkit/gfx/Raise.h"
#include "kalimkit/image/Pixelation.h"
#include "kalimkit/image/UprightBitmap.h"
#include "kalimkit/ui/environment/Environment.h"

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

// Carries a rectangle of the seen picture into its raster's pixels. Mirrored orientations are
// deliberately left alone.
gfx::AffineTransform croppingTransform(const gfx::Image& image) {
    constexpr double pi = std::numbers::pi;
    const gfx::Size size = image.size();
    const gfx::AffineTransform none;
    switch (image.orientation()) {
        case gfx::ImageOrientation::Down:
            return none.rotated(-pi).translated(-size.width, -size.height);
        case gfx::ImageOrientation::Right:
            return none.rotated(-pi / 2).translated(-size.width, 0);
        case gfx::ImageOrientation::Left:
            return none.rotated(pi / 2).translated(0, -size.height);
        default:
            return none;
    }
}

// Copies the part of the raster, or answers with an empty bitmap.
gfx::Bitmap cutOut(const gfx::Bitmap& raster, const gfx::Rect& rect) {
    const gfx::Rect part = MDrawImageUtil::pixelsInRect(raster.size(), rect);
    auto cut = gfx::Bitmap::unwritten(static_cast<int>(part.size.width),
                                      static_cast<int>(part.size.height));
    const auto left = static_cast<std::ptrdiff_t>(part.minX()) * 4;
    for (int y = 0; y < cut.height(); ++y) {
        std::memcpy(cut.row(y), raster.row(static_cast<int>(part.minY()) + y) + left, cut.stride());
    }
    return cut;
}

// Lays the image's size into the middle of the rectangle and carries it through the transform.
gfx::Rect placement(const gfx::Image& image, const gfx::Rect& bounds,
                    const gfx::AffineTransform& transform) {
    const gfx::Size size = image.size();
    return transform.apply(
        gfx::Rect({bounds.midX() - size.width * 0.5, bounds.midY() - size.height * 0.5}, size));
}

gfx::ImageRef drawnOnOpaque(const gfx::ImageRef& image, gfx::Size size, const gfx::Rect& rect) {
    ui::Environment& environment = ui::Environment::current();
    const std::shared_ptr<gfx::Surface> surface =
        environment.device().makeSurface(size, environment.screen().scale, true);
    if (!surface) return nullptr;
    surface->context().setInterpolation(gfx::Interpolation::High);
    surface->context().drawImage(*image, rect);
    return surface->makeImage();
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

gfx::Rect MDrawImageUtil::pixelsInRect(gfx::PixelSize raster, const gfx::Rect& rect) {
    // Angles leave a few billionths beside the pixel that is meant; those are not to cost a row.
    constexpr double tolerance = 1e-6;
    const gfx::Rect whole(0, 0, raster.width, raster.height);
    return rect.inset(tolerance, tolerance).roundedOut().intersection(whole);
}

gfx::ImageRef MDrawImageUtil::imageFromImageInRect(const gfx::ImageRef& image,
                                                   const gfx::Rect& rect) {
    if (!image) return nullptr;
    return ui::Environment::current().device().makeImage(cutOut(*image->pixels(), rect), 1,
                                                         gfx::ImageOrientation::Up);
}

gfx::ImageRef MDrawImageUtil::cropImageToRect(const gfx::ImageRef& image, const gfx::Rect& rect) {
    if (!image || rect == gfx::Rect{}) return nullptr;
    if (rect.contains(gfx::Rect(rect.origin, image->size()))) return image;
    const auto toRaster = croppingTransform(*image).concat(
        gfx::AffineTransform::scaling(image->scale(), image->scale()));
    return ui::Environment::current().device().makeImage(
        cutOut(*image->pixels(), toRaster.apply(rect)), image->scale(), image->orientation());
}

gfx::ImageRef MDrawImageUtil::resizedImageToSize(const gfx::ImageRef& image, gfx::Size size,
                                                 double screenScale) {
    if (!image) return nullptr;
    const gfx::PixelSize raster = image->pixelSize();
    if (size == gfx::Size{static_cast<double>(raster.width), static_cast<double>(raster.height)}) {
        return image;
    }
    gfx::Size target{flooredInSinglePrecision(size.width), flooredInSinglePrecision(size.height)};
    const gfx::ImageOrientation orientation = image->orientation();
    if (gfx::exchangesSides(orientation)) std::swap(target.width, target.height);
    ui::Environment& environment = ui::Environment::current();
    const std::shared_ptr<gfx::Surface> surface = environment.device().makeSurface(
        target, screenScale > 0 ? screenScale : environment.screen().scale, false);
    if (!surface) return nullptr;
    // Where the screen's scale is no whole number, the last pixels are covered, too.
    target = gfx::Size{static_cast<double>(surface->pixelSize().width),
                       static_cast<double>(surface->pixelSize().height)} *
             (1 / surface->scale());
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
                                                                    bool scaleIfSmaller,
                                                                    double screenScale) {
    if (!image) return nullptr;
    const double width = image->pixelSize().width;
    const double height = image->pixelSize().height;
    if (gfx::exchangesSides(image->orientation())) std::swap(box.width, box.height);
    if (width < box.width && !scaleIfSmaller && height < box.height) {
        return resizedImageToSize(image, {width, height}, screenScale);
    }
    if (box.height / height <= box.width / width) {
        return resizedImageToSize(image, {width * box.height / height, box.height}, screenScale);
    }
    return resizedImageToSize(image, {box.width, height * box.width / width}, screenScale);
}

gfx::ImageRef MDrawImageUtil::mosiacImageMosaicLevel(const gfx::ImageRef& image,
                                                     std::int32_t level) {
    if (!image || level < 1) return nullptr;
    const gfx::PixelSize raster = image->pixelSize();
    const double scale = image->scale();
    const gfx::PixelSize size{static_cast<int>(std::ceil(raster.width * scale)),
                              static_cast<int>(std::ceil(raster.height * scale))};
    gfx::Bitmap mosaic;
    spreadBlocks(blockColors(*image->pixels(), level), level, scale, size, mosaic);
    return ui::Environment::current().device().makeImage(std::move(mosaic), scale,
                                                         gfx::ImageOrientation::Up);
}

gfx::ImageRef MDrawImageUtil::mosiacImageMosaicLevelBoundsTransform(
    const gfx::ImageRef& image, std::int32_t level, const gfx::Rect& bounds,
    const gfx::AffineTransform& transform) {
    const gfx::ImageRef mosaic = mosiacImageMosaicLevel(image, level);
    if (!mosaic) return nullptr;
    return drawnOnOpaque(mosaic, mosaic->size(), placement(*image, bounds, transform));
}

gfx::ImageRef MDrawImageUtil::mosiacImageFittoSizeSrcImgBoundsTransform(
    const gfx::ImageRef& mosaic, const gfx::ImageRef& source, const gfx::Rect& bounds,
    const gfx::AffineTransform& transform) {
    if (!mosaic || !source) return nullptr;
    return drawnOnOpaque(mosaic, bounds.size, placement(*source, bounds, transform));
}

gfx::ImageRef MDrawImageUtil::fixOrientation(const gfx::ImageRef& image) {
    if (!image || image->orientation() == gfx::ImageOrientation::Up) return image;
    const gfx::ImageRef upright = ui::Environment::current().device().makeImage(
        uprightBitmap(*image->pixels(), image->orientation()), image->scale(),
        gfx::ImageOrientation::Up);
    if (!upright || image->grid() == gfx::PixelGrid()) return upright;
    return std::make_shared<const gfx::Image>(upright->raster(), upright->scale(),
                                              gfx::ImageOrientation::Up, image->grid());
}

}  // namespace kalim
