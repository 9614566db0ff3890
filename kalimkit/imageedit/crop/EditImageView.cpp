#include "kalimkit/imageedit/crop/EditImageView.h"

#include <cstdint>

#include "kalimkit/imageedit/image/MDrawImageUtil.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

namespace {

constexpr std::int32_t noTool = -1;
constexpr std::int32_t levelThatShowsEverything = 3;

gfx::ImageOrientation orientationAfter(std::int32_t quarterTurns) {
    using enum gfx::ImageOrientation;
    constexpr gfx::ImageOrientation orientations[] = {Up, Left, Down, Right};
    return orientations[quarterTurns];
}

// The same raster, seen in another way.
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
    if (!rect.isEmpty()) context.drawImage(*copyFor(context, rect), rect);
}

// With about as many pixels as the screen has for it, so that a frame reads no more of it. On its
// way from one turn to another all that is seen is sampled anew in each frame, and that it is a
// little less sharp then is not seen.
gfx::ImageRef EditImageView::copyFor(const gfx::Context& context, const gfx::Rect& rect) {
    constexpr double sharpnessOnTheWay = 0.67;
    const gfx::ImageOrientation orientation = image()->orientation();
    const bool isOnTheWay = !context.transform().isScaleAndTranslation();
    const double across = gfx::exchangesSides(orientation) ? rect.size.height : rect.size.width;
    const double pixels = across * context.transform().largestStretch() *
                          ui::Environment::current().screen().scale *
                          (isOnTheWay ? sharpnessOnTheWay : 1);
    const gfx::ImageRef copy = _reductions.atLeast(pixels, PictureReductions::Making::Any);
    if (!copy) return image();
    return isOnTheWay || isLarge(*copy) ? turned(*copy, orientation) : turnedCopy(copy);
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
