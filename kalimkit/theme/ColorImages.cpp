#include "kalimkit/theme/ColorImages.h"

#include <algorithm>
#include <memory>
#include <numbers>
#include <utility>

#include "kalimkit/gfx/Path.h"
#include "kalimkit/theme/KeptPictures.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// A radius beyond half a side counts as that half.
gfx::Path roundedRect(gfx::Size size, double cornerRadius) {
    constexpr double quarter = std::numbers::pi / 2;
    const double radius = std::min({cornerRadius, size.width / 2, size.height / 2});
    const double right = size.width - radius;
    const double bottom = size.height - radius;
    gfx::Path path;
    path.addArc({right, radius}, radius, -quarter, 0, false);
    path.addArc({right, bottom}, radius, 0, quarter, false);
    path.addArc({radius, bottom}, radius, quarter, 2 * quarter, false);
    path.addArc({radius, radius}, radius, 2 * quarter, 3 * quarter, false);
    path.close();
    return path;
}

// An upright copy with the image's pixels and scale, drawn by `draw` into a context whose unit is
// the pixel.
template <typename Draw>
gfx::ImageRef redrawn(const gfx::ImageRef& image, Draw draw) {
    gfx::PixelSize pixels = image->pixelSize();
    if (gfx::exchangesSides(image->orientation())) std::swap(pixels.width, pixels.height);
    const gfx::Rect whole(0, 0, pixels.width, pixels.height);
    const std::shared_ptr<gfx::Surface> surface =
        ui::Environment::current().device().makeSurface(whole.size, 1, false);
    if (!surface) return nullptr;
    draw(surface->context(), whole);
    const gfx::ImageRef drawn = surface->makeImage();
    if (!drawn) return nullptr;
    auto copy = std::make_shared<const gfx::Image>(drawn->raster(), image->scale(),
                                                   gfx::ImageOrientation::Up);
    KeptPictures::current().noteCopy(copy, image);
    return copy;
}

}  // namespace

gfx::ImageRef imageWithColor2(const gfx::ColorRef& color) {
    return imageWithColor2AndSize(color, {1, 1});
}

gfx::ImageRef imageWithColor2AndSize(const gfx::ColorRef& color, gfx::Size size) {
    const bool isZero = size.width == 0 && size.height == 0;
    return imageWithColorSizeCornerRadius(color, isZero ? gfx::Size{1, 1} : size, 0);
}

gfx::ImageRef highlightBackgroundImage2() {
    return KeptPictures::current().highlightBackground();
}

gfx::ImageRef imageWithColor(const gfx::ColorRef& color) {
    return imageWithColorSizeCornerRadius(color, {4, 4}, 0);
}

gfx::ImageRef imageWithColorSizeCornerRadius(const gfx::ColorRef& color, gfx::Size size,
                                             double cornerRadius) {
    if (!color) return nullptr;
    ui::Environment& environment = ui::Environment::current();
    const std::shared_ptr<gfx::Surface> surface =
        environment.device().makeSurface(size, environment.screen().scale, false);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.setFillColor(*color);
    if (cornerRadius > 0) {
        context.addPath(roundedRect(size, cornerRadius));
        context.fill();
    } else {
        context.fillRect({{}, size});
    }
    return surface->makeImage();
}

gfx::ImageRef imageWithTintColor(const gfx::ImageRef& image, const gfx::ColorRef& color) {
    if (!image || !color) return nullptr;
    return redrawn(image, [&](gfx::Context& context, const gfx::Rect& whole) {
        context.drawImage(*image, whole);
        context.setBlendMode(gfx::BlendMode::SourceIn);
        context.setFillColor(*color);
        context.fillRect(whole);
    });
}

gfx::ImageRef imageWithAlpha(const gfx::ImageRef& image, double alpha) {
    if (!image) return nullptr;
    return redrawn(image, [&](gfx::Context& context, const gfx::Rect& whole) {
        context.setAlpha(alpha);
        context.drawImage(*image, whole);
    });
}

}  // namespace kalim
