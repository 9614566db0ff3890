#include <utility>

#include "kalimkit/crop/CropParts.h"
#include "kalimkit/crop/CropRest.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/image/MDrawImageUtil.h"

// How the crop editor is left: with what was cut out, or without.

namespace kalim {

namespace {

constexpr double leaveDuration = 0.3;
constexpr double fadeDuration = 0.2;

}  // namespace

// ---- confirming

void EditImageIntialView::onCropToolBarDoneBtnClicked() {
    if (isRotationIconLocked() || isCropOver()) return;
    const auto alive = self();
    CropBoard& board = _parts->board;
    _parts->turns.commit();
    board.moveToCenter();
    board.stayHere();
    board.matchOverlay();
    board.setOverlayLevel(overlayLevelWhenOver);
    board.setIsOver(true);
    clearOperation();
    saveProperties();
    if (_leavesWhenUnchanged && isUnchanged()) return OnClickEditImageBackBarButton();
    board.animate(leaveDuration,
                  [&board] { board.scroll()->cropImage(board.scroll()->lastCropFrame()); });
    const auto owner = _delegate.lock();
    if (owner && owner->onCropChosen(board.chosenCut(), toSuperview().apply(board.frame())))
        return OnClickEditImageDoneBarButton();
    const gfx::ImageRef image = cutImage();
    // Nothing to apply, where no memory is left for it.
    if (!image) return OnClickEditImageBackBarButton();
    if (owner) owner->onCropImageDone(image);
    OnClickEditImageDoneBarButton();
}

// Pixels of the picture as it is turned.
gfx::Rect EditImageIntialView::cutRect() const {
    const EditImageScrollView& scroll = *eIScrollView();
    return cropCutRect(scroll.lastCropFrame(), _parts->board.measures().raster,
                       scroll.imageView()->frame().size, scroll.zoomScale());
}

bool EditImageIntialView::isUnchanged() const {
    return _parts->board.openingCrop() ? !hasChanged() : keepsWholePicture();
}

bool EditImageIntialView::keepsWholePicture() const {
    if (currentRotationOrientation() != startRotationOrientation()) return false;
    const gfx::PixelSize raster = _parts->board.picture()->pixelSize();
    return cutRect().roundedOut().contains(gfx::Rect(0, 0, raster.width, raster.height));
}

gfx::ImageRef EditImageIntialView::cutImage() const {
    const gfx::ImageRef turned =
        MDrawImageUtil::fixOrientation(eIScrollView()->imageView()->image());
    return MDrawImageUtil::imageFromImageInRect(turned, cutRect());
}

void EditImageIntialView::saveProperties() {
    EditImageScrollView& scroll = *eIScrollView();
    scroll.setLastGridFrame(cropFrame());
    scroll.setLastScale(scroll.zoomScale());
    scroll.setLastOffset(scroll.contentOffset());
    if (const auto overlay = overlayView()) scroll.setLastCropFrame(overlay->brightFrame());
}

void EditImageIntialView::clearOperation() {
    _parts->board.setGesturesEnabled(false);
    _parts->hand.letGo();
    _isToolBarOccupy = false;
}

void EditImageIntialView::OnClickEditImageDoneBarButton() {
    if (!_parts->board.picture()) return;
    if (const auto delegate = _delegate.lock()) delegate->OnClickEditImageDoneBarButton();
}

// ---- going back

void EditImageIntialView::onCropToolBarCancelBtnClicked() {
    const auto alive = self();
    CropBoard& board = _parts->board;
    if (isRotationIconLocked() || !board.isCropping() || board.isOver()) return;
    board.scroll()->stopMoving();
    _parts->turns.takeBack();
    board.placeAtOpening();
    board.moveToCenter();
    board.stayHere();
    board.setOverlayLevel(overlayLevelWhenOver);
    board.setIsOver(true);
    clearOperation();
    OnClickEditImageBackBarButton();
}

void EditImageIntialView::OnClickEditImageBackBarButton() {
    const auto alive = self();
    CropBoard& board = _parts->board;
    board.stayHere();
    board.setIsOver(true);
    _parts->turns.takeAllBack();
    board.scroll()->onClickCancelBtn();
    if (const auto delegate = _delegate.lock()) delegate->OnClickEditImageBackBarButton();
    board.fadeBar(true);
    // What fades out shows it to the end.
    if (!_isFadingOut) board.scroll()->removeFromSuperview();
    board.after(leaveDuration, [this] { endEditImageView(); });
}

void EditImageIntialView::fadeOut() {
    if (std::exchange(_isFadingOut, true)) return;
    // Without a picture it is nothing but black.
    if (!eIScrollView()->imageView()->image()) return removeFromSuperview();
    setUserInteractionEnabled(false);
    setAccessibilityModal(false);
    setAccessibilityHidden(true);
    _parts->board.animate(
        fadeDuration, [this] { setAlpha(0); }, [this] { removeFromSuperview(); });
}

void EditImageIntialView::endEditImageView() {
    _parts->board.setIsCropping(false);
    _parts->board.setPicture(nullptr);
    eIScrollView()->imageView()->showPicture(nullptr, 0);
}

}  // namespace kalim
