#include "kalimkit/crop/EditImageView.h"

#include <cstdint>

#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr std::int32_t noTool = -1;
constexpr std::int32_t levelThatShowsEverything = 3;

gfx::ImageOrientation orientationAfter(std::int32_t quarterTurns) {
    using enum gfx::ImageOrientation;
    constexpr gfx::ImageOrientation orientations[] = {Up, Left, Down, Right};
    return orientations[quarterTurns];
}

// Shares the raster and sees it in another way.
gfx::ImageRef turned(const gfx::Image& image, gfx::ImageOrientation orientation) {
    return std::make_shared<gfx::Image>(image.raster(), image.scale(), orientation);
}

// Turning the pixels takes longer than a frame lasts.
bool isLarge(const gfx::Image& image) {
    constexpr std::int64_t mostPixels = 4'000'000;
    return std::int64_t{image.pixelSize().width} * image.pixelSize().height > mostPixels;
}

}  // namespace

std::shared_ptr<EditImageView> EditImageView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : EditImageView {};
    const std::shared_ptr<EditImageView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void EditImageView::init(const gfx::Rect& frame) {
    ImageView::init(frame);
    _overlayView = EditImageCropOverlayView::initWithFrame(bounds());
    addSubview(_overlayView);
}

void EditImageView::layoutSubviews() {
    _overlayView->setFrame(bounds());
}

// ---- the picture

void EditImageView::showPicture(const gfx::ImageRef& upright, std::int32_t quarterTurns) {
    if (!upright || !image() || upright->raster() != image()->raster()) _reductions.take(upright);
    _copy = _turnedCopy = nullptr;
    setImage(upright ? turned(*upright, orientationAfter(quarterTurns)) : nullptr);
}

gfx::Size EditImageView::pixelsSeen() const {
    if (!image()) return {};
    const auto [width, height] = image()->pixelSize();
    const gfx::Size stored(width, height);
    return gfx::exchangesSides(image()->orientation()) ? gfx::Size{stored.height, stored.width}
                                                       : stored;
}

void EditImageView::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const gfx::Rect rect = imageRect();
    if (rect.isEmpty()) return;
    const double scale = ui::Environment::current().screen().scale;
    const gfx::ImageOrientation orientation = image()->orientation();
    if (!context.transform().isScaleAndTranslation()) {
        const bool isCoarse = scale > 1 && isLarge(*image());
        const double sharpness = isCoarse ? 0.5 : 0.67;
        const gfx::ImageRef copy = turned(*copyFor(context, rect, scale * sharpness), orientation);
        if (isCoarse && drawCoarsely(context, *copy, rect, scale * sharpness)) return;
        return context.drawImage(*copy, rect);
    }
    const gfx::ImageRef copy = copyFor(context, rect, scale);
    context.drawImage(isLarge(*copy) ? *turned(*copy, orientation) : *turnedCopy(copy), rect);
}

// On the way from one turn to another all that is seen is sampled anew in each frame. That fewer
// pixels are drawn then, and stretched, is not seen. False where no surface can be had.
bool EditImageView::drawCoarsely(gfx::Context& context, const gfx::Image& copy,
                                 const gfx::Rect& rect, double scale) {
    const gfx::AffineTransform toWindow = context.transform();
    const gfx::Rect seen =
        toWindow.apply(rect).intersection(toWindow.apply(context.clipBounds())).roundedOut();
    const auto surface = ui::Environment::current().device().makeSurface(seen.size, scale, false);
    if (!surface) return false;
    surface->context().translate(-seen.minX(), -seen.minY());
    surface->context().concat(toWindow);
    surface->context().drawImage(copy, rect);
    const gfx::GraphicsStateGuard guard(context);
    context.concat(toWindow.inverted());
    context.drawSurface(
        *surface, {seen.origin, gfx::Size(surface->pixelSize().width, surface->pixelSize().height) *
                                    (1 / scale)});
    return true;
}

// Of the picture before it is turned, with about as many pixels as are drawn for it, so that a
// frame reads no more of it.
gfx::ImageRef EditImageView::copyFor(const gfx::Context& context, const gfx::Rect& rect,
                                     double pixelsPerPoint) {
    const bool isAcross = gfx::exchangesSides(image()->orientation());
    const double points = isAcross ? rect.size.height : rect.size.width;
    const gfx::ImageRef copy =
        _reductions.atLeast(points * context.transform().largestStretch() * pixelsPerPoint,
                            PictureReductions::Making::Any);
    return copy ? copy : image();
}

// Pixels in the order in which they are seen are drawn faster than others.
gfx::ImageRef EditImageView::turnedCopy(const gfx::ImageRef& copy) {
    if (copy != _copy) {
        _copy = copy;
        _turnedCopy = MDrawImageUtil::fixOrientation(turned(*copy, image()->orientation()));
    }
    return _turnedCopy;
}

// ---- tools

void EditImageView::onClickCancelBtn() {
    _imageTool = noTool;
    _overlayView->setOverlayLevel(levelThatShowsEverything);
}

void EditImageView::editImageViewDidStartDraw() {
    if (const auto delegate = _delegate.lock()) delegate->editImageViewDidStartDraw();
}

void EditImageView::editImageViewdidEndDraw() {
    if (const auto delegate = _delegate.lock()) delegate->editImageViewdidEndDraw();
}

}  // namespace kalim
