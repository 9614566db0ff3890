#include "kalimkit/crop/CropOpening.h"

#include <utility>

#include "kalimkit/crop/CropRest.h"

namespace kalim {

namespace {

constexpr double glideDuration = 0.3;
constexpr double readyDelay = 0.1;

}  // namespace

void CropOpening::show(const gfx::ImageRef& image, const std::optional<gfx::Rect>& seen) {
    const gfx::Rect whole = _board.view().bounds();
    const gfx::Rect place =
        seen ? *seen : ui::imageRectIn(whole, image->size(), ui::ContentMode::AspectFit);
    EditImageScrollView& scroll = *_board.scroll();
    scroll.imageView()->showPicture(image, 0);
    // What is transparent is seen as on the canvas.
    scroll.imageView()->setBackgroundColor(gfx::makeColor(1, 1, 1));
    scroll.setFrame(whole);
    scroll.placeImage(place.size, 1, place.origin);
    scroll.setInitialFrame(place);
}

void CropOpening::begin(const gfx::Rect& frame,
                        std::weak_ptr<EditImageCropToolBarDelegate> barDelegate,
                        std::weak_ptr<ui::GestureDelegate> panDelegate) {
    _panDelegate = std::move(panDelegate);
    _board.startFrame(frame);
    _board.setIsOver(false);
    _board.makeBar(std::move(barDelegate));
    _board.takeOverlay();
    _turns.begin();
    glide();
}

// The picture goes from where it is seen into the content.
void CropOpening::glide() {
    _isReady = false;
    _board.setGesturesEnabled(false);
    EditImageScrollView& scroll = *_board.scroll();
    const gfx::Rect seen = scroll.imageFrame();
    _board.layOutScroll(seen.size);
    const CropPlacement placement = _board.openingPlacement();
    const double zoom = seen.size.width / placement.imageSize.width;
    // The size is not in whole points as later, so that nothing is seen to jump.
    scroll.placeImage(seen.size * (1 / zoom), zoom, seen.origin);
    _board.darkenAroundOpeningCrop();
    _board.animate(
        glideDuration,
        [&] {
            if (_board.openingCrop()) _board.setOverlayLevel(overlayLevelAtRest);
            scroll.placeImage(placement.imageSize, placement.zoomScale, placement.image.origin);
        },
        [this] { enterCropMode(); });
}

void CropOpening::enterCropMode() {
    if (_board.isOver()) return;
    _board.setIsCropping(true);
    _board.makeGrid();
    _hand.makePan(_panDelegate);
    _board.restart();
    _board.layOut();
    _board.keepOffset();
    _board.settleAfter(0);
    _board.matchOverlay();
    _board.setGesturesEnabled(true);
    _turns.setIsLocked(false);
    _board.after(readyDelay, [this] { _isReady = true; });
}

}  // namespace kalim
