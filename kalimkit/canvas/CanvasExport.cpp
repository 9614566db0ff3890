#include "kalimkit/canvas/CanvasExport.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/canvas/CanvasContent.h"
#include "kalimkit/canvas/CanvasFinger.h"
#include "kalimkit/canvas/CanvasHistory.h"
#include "kalimkit/canvas/CanvasPainter.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/canvas/CanvasSelection.h"
#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/canvas/CanvasTyping.h"
#include "kalimkit/image/GaussianBlur.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/image/PictureCut.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/loop/FlagScope.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

namespace {

constexpr double tolerance = 1e-6;

// Whole device pixels from the same corner on, so that no pixel at the far edges is left half
// covered.
gfx::Rect grownToPixels(const gfx::Rect& rect, double scale) {
    return {rect.origin,
            {std::ceil(rect.size.width * scale - tolerance) / scale,
             std::ceil(rect.size.height * scale - tolerance) / scale}};
}

}  // namespace

// Nothing leaves as a preview.
void CanvasExport::settle() {
    _canvas.finger.endCreation();
    _canvas.typing.finish();
    _canvas.selection.clear();
    _canvas.history.removeInvalid();
}

gfx::ImageRef CanvasExport::image() {
    settle();
    const CanvasHiding::Burn burn(_canvas.painter.hiding(), CanvasHiding::Copies::All);
    if (burn.hasFailed()) return nullptr;
    return turned(_canvas.shown.isCropped() ? cropAtScreenScale() : drawnAtScreenScale());
}

// So many points of the screen make one of the canvas.
double CanvasExport::pointsOnScreen() const {
    const CanvasPicture& picture = _canvas.shown.picture;
    return picture.hasBasis() ? picture.fittingScale() : picture.settledScale();
}

gfx::ImageRef CanvasExport::drawnAtScreenScale() {
    ui::Environment& environment = ui::Environment::current();
    const double scale = environment.screen().scale;
    const double points = pointsOnScreen();
    // Letting go of the selection may have changed its geometry, so that the content as it was last
    // measured is not asked.
    const gfx::Rect content =
        gfx::AffineTransform::scaling(points, points).apply(_canvas.content.exported());
    const gfx::Rect whole = grownToPixels(content, scale);
    const auto surface = environment.device().makeSurface(whole.size, scale, true);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.setInterpolation(gfx::Interpolation::High);
    context.translate(-whole.minX(), -whole.minY());
    _canvas.painter.fillBackground(context, whole);
    context.scale(points, points);
    const gfx::ImageRef fitted = _canvas.shown.picture.exportedAt(points * scale);
    const gfx::Rect place = _canvas.painter.placeOf(fitted, context);
    if (fitted) context.drawImage(*fitted, place);
    const gfx::Rect ground = gfx::AffineTransform::scaling(1 / points, 1 / points).apply(whole);
    _canvas.screen.drawExported(context, _canvas.painter.drawnPicture({fitted, place}, ground));
    _canvas.history.noteExported();
    return surface->makeImage();
}

// Stretched by less than a pixel, so that it comes out in whole ones: beside it there is nothing to
// fill a pixel up with.
gfx::ImageRef CanvasExport::cropAtScreenScale() {
    ui::Environment& environment = ui::Environment::current();
    const double scale = environment.screen().scale;
    const double points = pointsOnScreen();
    CanvasPicture& picture = _canvas.shown.picture;
    const gfx::Rect part = picture.part();
    const auto whole = [&](double length) {
        return std::max(std::round(length * points * scale), 1.0) / scale;
    };
    const gfx::Size size{whole(part.size.width), whole(part.size.height)};
    const auto surface = environment.device().makeSurface(size, scale, true);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    context.setInterpolation(gfx::Interpolation::High);
    _canvas.painter.fillBackground(context, {{}, size});
    context.scale(size.width / part.size.width, size.height / part.size.height);
    context.translate(-part.minX(), -part.minY());
    const gfx::ImageRef copy = picture.exportedAt(points * scale);
    context.drawImage(*copy, picture.rect());
    _canvas.screen.drawExported(context,
                                _canvas.painter.drawnPicture({copy, picture.rect()}, part));
    _canvas.history.noteExported();
    return surface->makeImage();
}

gfx::ImageRef CanvasExport::imageAtPictureScale() {
    settle();
    const CanvasPicture& picture = _canvas.shown.picture;
    if (!picture.source() || picture.rect().isEmpty()) return image();
    const auto [whole, origin] = drawnAtPictureScale();
    if (!whole) return nullptr;
    const bool isCropped = picture.isCropped();
    const gfx::ImageRef part =
        isCropped ? MDrawImageUtil::imageFromImageInRect(whole, picture.cut().crop->offset(origin))
                  : whole;
    const gfx::ImageRef image = turned(part);
    noteExported(image, isCropped ? gfx::Point{} : origin);
    return image;
}

void CanvasExport::noteExported(const gfx::ImageRef& image, gfx::Point origin) {
    const CanvasPicture& picture = _canvas.shown.picture;
    const auto whole = [](double length) { return static_cast<int>(std::lround(length)); };
    _last = image;
    _lastOrigin = {picture.source(),
                   pixelPartOf(picture.cut(), picture.source()->pixelSize()),
                   whole(origin.x),
                   whole(origin.y),
                   picture.cut().quarterTurns,
                   _canvas.painter.hiding().hidden()};
}

std::optional<ExportedPicture> CanvasExport::exportedPicture(const gfx::ImageRef& image) const {
    if (!image || _last.lock() != image) return std::nullopt;
    return _lastOrigin;
}

gfx::ImageRef CanvasExport::uncutImage() {
    settle();
    const CanvasPicture& picture = _canvas.shown.picture;
    if (!picture.source() || picture.rect().isEmpty()) return nullptr;
    const auto [whole, origin] = drawnAtPictureScale();
    const gfx::PixelSize pixels = picture.source()->pixelSize();
    if (!whole || whole->pixelSize() == pixels) return whole;
    return MDrawImageUtil::imageFromImageInRect(whole, partOf({}, pixels).offset(origin));
}

CanvasExport::Drawn CanvasExport::drawnAtPictureScale() {
    const ui::FlagScope uncropped(_canvas.shown.showsUncropped);
    const CanvasHiding::Burn burn(_canvas.painter.hiding(), CanvasHiding::Copies::None);
    if (burn.hasFailed()) return {};
    const gfx::ImageRef& source = _canvas.shown.picture.source();
    const gfx::Rect& place = _canvas.shown.picture.rect();
    const gfx::PixelSize pixels = source->pixelSize();
    const gfx::AffineTransform toPixels =
        gfx::AffineTransform::scaling(pixels.width / place.size.width,
                                      pixels.height / place.size.height)
            .translated(-place.minX(), -place.minY());
    const gfx::Rect picture(0, 0, pixels.width, pixels.height);
    // A crop lies within the picture: however far drawings reach, nothing else is wanted.
    const gfx::Rect whole = _canvas.shown.picture.isCropped()
                                ? picture
                                : toPixels.apply(_canvas.content.exported())
                                      .inset(tolerance, tolerance)
                                      .roundedOut()
                                      .unionWith(picture);
    const auto surface = ui::Environment::current().device().makeSurface(whole.size, 1, false);
    if (!surface) return {};
    gfx::Context& context = surface->context();
    context.translate(-whole.minX(), -whole.minY());
    // Where the picture lets something through it goes on doing so; beside it there is background.
    if (whole != picture) {
        _canvas.painter.fillBackground(context, whole);
        context.setBlendMode(gfx::BlendMode::Clear);
        context.fillRect(picture);
        context.setBlendMode(gfx::BlendMode::Normal);
    }
    // The picture is copied pixel for pixel.
    context.setInterpolation(gfx::Interpolation::None);
    context.drawImage(*source, picture);
    context.concat(toPixels);
    _canvas.screen.drawExported(context, _canvas.painter.drawnPicture({source, place}, place));
    _canvas.history.noteExported();
    return {surface->makeImage(), gfx::Point{} - whole.origin};
}

// What has been drawn as the picture lies is turned pixel by pixel.
gfx::ImageRef CanvasExport::turned(const gfx::ImageRef& image) const {
    return turnedImage(image, _canvas.shown.picture.cut().quarterTurns);
}

gfx::ImageRef CanvasExport::imageOfView() {
    _canvas.finger.endCreation();
    _canvas.view.layoutIfNeeded();
    const CanvasHiding::Burn burn(_canvas.painter.hiding(), CanvasHiding::Copies::All);
    if (burn.hasFailed()) return nullptr;
    ui::Environment& environment = ui::Environment::current();
    const auto surface = environment.device().makeSurface(_canvas.view.bounds().size,
                                                          environment.screen().scale, false);
    if (!surface) return nullptr;
    _canvas.view.renderIn(surface->context());
    return surface->makeImage();
}

gfx::ImageRef CanvasExport::blurred(const gfx::ImageRef& image) {
    constexpr double inputRadius = 100;
    if (!image) return nullptr;
    const gfx::ImageRef& own = _canvas.shown.picture.source();
    const bool isOwn = image == own;
    const CanvasHiding::Burn burn(_canvas.painter.hiding(), CanvasHiding::Copies::None);
    if (isOwn && burn.hasFailed()) return nullptr;
    const gfx::ImageRef upright = MDrawImageUtil::fixOrientation(isOwn ? own : image);
    return ui::Environment::current().device().makeImage(
        gaussianBlurred(*upright->pixels(), inputRadius), upright->scale(),
        gfx::ImageOrientation::Up);
}

}  // namespace kalim
