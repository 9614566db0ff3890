#include "kalimkit/crop/EditImageIntialView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/crop/CropDrag.h"
#include "kalimkit/crop/CropRest.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/theme/TallPhone.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Around the content; below it the bar with the rotate button above it.
constexpr double contentMargin = 20;
constexpr double barsInSafeArea = 14;
constexpr double bottomBars = 60 + 63;
constexpr double leaveDuration = 0.3;
constexpr double fadeDuration = 0.2;
// What makes a zoom differ from the least one.
constexpr double zoomTolerance = 0.01;
const gfx::Rect wholePicture{0, 0, 1, 1};

}  // namespace

// ---- making

std::shared_ptr<EditImageIntialView> EditImageIntialView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : EditImageIntialView {};
    const std::shared_ptr<EditImageIntialView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void EditImageIntialView::init(const gfx::Rect& frame) {
    View::init(frame);
    setBackgroundColor(gfx::makeColor(0, 0, 0));
    setMultipleTouchEnabled(true);
    setClipsToBounds(true);
    setAccessibilityRole(ui::AccessibilityRole::Group);
    setAccessibilityLabel(ui::Environment::current().localizedString("裁剪"));
    _eIScrollView = EditImageScrollView::initWithFrame(bounds());
    _eIScrollView->setDelegate(self());
    _eIScrollView->setM_delegate(self());
    addSubview(_eIScrollView);
}

ui::RunLoop& EditImageIntialView::runLoop() {
    return ui::Environment::current().runLoop();
}

std::shared_ptr<EditImageIntialView> EditImageIntialView::self() {
    return std::static_pointer_cast<EditImageIntialView>(shared_from_this());
}

void EditImageIntialView::after(double delay, void (EditImageIntialView::*step)()) {
    const std::weak_ptr<EditImageIntialView> weakSelf = self();
    runLoop().after(delay, [weakSelf, step] {
        if (const auto view = weakSelf.lock()) ((*view).*step)();
    });
}

void EditImageIntialView::animate(double duration, const std::function<void()>& changes,
                                  const std::function<void()>& end) {
    if (!_isAnimateEnable) {
        changes();
        if (end) end();
        return;
    }
    const std::weak_ptr<EditImageIntialView> weakSelf = self();
    ui::AnimationOptions options;
    options.duration = duration;
    options.allowsUserInteraction = true;
    View::animate(options, changes, [weakSelf, end](bool) {
        const auto view = weakSelf.lock();
        if (view && end) end();
    });
}

// ---- layout

bool EditImageIntialView::isiPhoneX() {
    return isTallPhone(ui::Environment::current().screen());
}

double EditImageIntialView::safeAreaTop() const {
    return safeAreaInsets().top;
}

double EditImageIntialView::safeAreaBottom() const {
    return std::max(safeAreaInsets().bottom - barsInSafeArea, 0.0);
}

void EditImageIntialView::safeAreaDidChange() {
    // Laid out for another one.
    _laidOutSize = {};
    setNeedsLayout();
    if (_cropToolBar) _cropToolBar->setNeedsLayout();
}

// Whole points, so that what fits it touches its sides.
gfx::Rect EditImageIntialView::contentFrame() const {
    const gfx::Size size = bounds().size;
    const double top = safeAreaTop() + contentMargin;
    const double bottom = safeAreaBottom() + bottomBars + contentMargin;
    const ui::EdgeInsets safe = safeAreaInsets();
    const double width = std::floor(size.width - safe.horizontal() - 2 * contentMargin);
    return {safe.left + contentMargin, top, std::max(width, leastCropSide),
            std::max(std::floor(size.height - top - bottom), leastCropSide)};
}

// Moved down by the natural top length: with that the content inset is as it has to be, see
// cropContentInset().
gfx::Rect EditImageIntialView::scrollFrame() const {
    const auto [width, height] = bounds().size;
    return {0, _naturalTopLength + safeAreaTop(), width, height - 2 * safeAreaTop()};
}

CropPlacement EditImageIntialView::startPlacement() const {
    const gfx::PixelSize pixels = _originalImage->pixelSize();
    return CropPlacement::settled(
        {static_cast<double>(pixels.width), static_cast<double>(pixels.height)}, wholePicture,
        contentFrame());
}

gfx::Rect EditImageIntialView::cropShare() const {
    const gfx::Rect image = _eIScrollView->imageFrame();
    if (image.isEmpty()) return wholePicture;
    return coveredCropShare({(_cropFrame.minX() - image.minX()) / image.size.width,
                             (_cropFrame.minY() - image.minY()) / image.size.height,
                             _cropFrame.size.width / image.size.width,
                             _cropFrame.size.height / image.size.height});
}

void EditImageIntialView::place(const CropPlacement& placement) {
    _oldStartImageFrameSize = placement.imageSize;
    _eIScrollView->placeImage(placement.imageSize, placement.zoomScale, placement.image.origin);
    setCropFrame(placement.frame);
}

void EditImageIntialView::layoutSubviews() {
    layoutContent();
}

// The opening, or a turn, that is under way comes to its end first.
void EditImageIntialView::layoutContent() {
    if (bounds().size == _laidOutSize || _isRotating) return;
    if (_cropToolBar) layoutToolBar();
    if (!_isCropping) return;
    _laidOutSize = bounds().size;
    const gfx::Rect share = cropShare();
    // Not as it is laid out, in whole points: what is not cropped is to stay so.
    const gfx::Size pixels = _eIScrollView->imageView()->pixelsSeen();
    const bool isMoving = _isAnimating;
    stopContent();
    letGoOfFingers();
    _naturalTopLength = cropNaturalTopLength(startPlacement().imageSize, bounds().size);
    _eIScrollView->setFrame(scrollFrame());
    _cropOriginalFrame = startPlacement().frame;
    place(CropPlacement::settled(pixels, share, contentFrame()));
    // The end of what was moving, which sees to that, does not come.
    if (const auto overlay = overlayView(); overlay && isMoving)
        overlay->setOverlayLevel(overlayLevelAtRest);
}

// ---- the frame

CropEdge EditImageIntialView::cropEdgeForPoint(gfx::Point p) const {
    return kalim::cropEdgeForPoint(p, _cropFrame);
}

void EditImageIntialView::updateCropLinesWithPoint(gfx::Point p) {
    const CropDrag drag{_cropEdge,      _cropTouchPoint,      _cropTouchFrame,
                        contentFrame(), _isAspectRatioLocked, cropPicture(),
                        _cropLimits};
    setCropFrame(drag.frameAt(p, _cropFrame));
}

CropPicture EditImageIntialView::cropPicture() const {
    gfx::PixelSize raster = _originalImage ? _originalImage->pixelSize() : gfx::PixelSize{};
    if ((_currentRotationOrientation - _startRotationOrientation) % 2 != 0)
        raster = {raster.height, raster.width};
    return {_oldStartImageFrameSize, raster, _eIScrollView->zoomScale()};
}

void EditImageIntialView::setCropFrame(const gfx::Rect& frame) {
    _cropFrame = frame;
    if (_cropGridView) {
        _cropGridView->setFrame(frame);
        _cropGridView->layoutIfNeeded();
    }
    _eIScrollView->setContentInset(
        cropContentInset(frame, bounds().size, _naturalTopLength, safeAreaTop()));
    setScrollViewMaxMinZoomScale();
    const gfx::Point offset = _eIScrollView->contentOffset();
    const gfx::Point covering = _eIScrollView->coveringOffset(offset);
    if (covering != offset) _eIScrollView->setContentOffset(covering);
    if (!_isAnimating) matchOverlayViewToCropGridView();
    checkForCanRevert();
}

// A zoom above the largest one stays: the frame has taken it there.
void EditImageIntialView::setScrollViewMaxMinZoomScale() {
    const auto [size, raster, zoom] = cropPicture();
    const double pointsPerPixel = raster.isEmpty() ? 0 : size.width / raster.width;
    const CropZoomLimits limits = cropZoomLimits(size, _cropFrame.size, pointsPerPixel);
    _eIScrollView->setMinimumZoomScale(limits.minimum);
    _eIScrollView->setMaximumZoomScale(std::max(limits.maximum, zoom));
    if (zoom >= limits.minimum) return;
    // About the middle of the frame.
    const gfx::Point middle = _cropFrame.center() - _eIScrollView->frame().origin;
    const gfx::Point place = _eIScrollView->contentOffset() + middle;
    _eIScrollView->setZoomScale(limits.minimum);
    _eIScrollView->setContentOffset(place * (limits.minimum / zoom) - middle);
}

void EditImageIntialView::matchOverlayViewToCropGridView() {
    const auto overlay = overlayView();
    if (!_cropToolBar || !_cropGridView || !overlay) return;
    overlay->setZoomScale(_eIScrollView->zoomScale());
    overlay->setBrightFrame(_cropGridView->convertRectTo(_cropGridView->bounds(), overlay.get()));
}

// ---- reverting

bool EditImageIntialView::isCropped() const {
    const double beyondLeast = _eIScrollView->zoomScale() - _eIScrollView->minimumZoomScale();
    if (beyondLeast > zoomTolerance) return true;
    if (!QVSizeApproximateEqual(_cropFrame.size, _cropOriginalFrame.size)) return true;
    return _isAspectRatioLocked &&
           !QVPointApproximateEqual(_eIScrollView->contentOffset(), _originalScrollViewOffset);
}

void EditImageIntialView::checkForCanRevert() {
    if (_cropToolBar) _cropToolBar->canRevertEnable(isRotated() || isCropped());
}

void EditImageIntialView::onCropToolBarRevertBtnClicked() {
    if (!_isRotationIconLocked) revertLayoutContentImage();
}

void EditImageIntialView::revertLayoutContentImage() {
    const auto alive = self();
    if (!_isCropping || _isRotating) return;
    stopContent();
    letGoOfFingers();
    _eIScrollView->stopMoving();
    resetTimer();
    const std::int32_t turns =
        cropQuarterTurns(_currentRotationOrientation, _startRotationOrientation);
    // The bright frame cannot grow along, so the darkness goes, and is back once all is bright.
    const auto fadeOverlay = [this] {
        if (const auto overlay = overlayView()) overlay->setOverlayLevel(overlayLevelInDrags);
    };
    if (turns != 0) {
        animate(cropSettleDuration, fadeOverlay);
        return turnTo(turns, wholePicture, _isAnimateEnable, {});
    }
    animateContent([&] {
        restoreLayoutContentImage();
        fadeOverlay();
    });
    _cropToolBar->hideRotateBtnWithAnimation(false, true);
}

// ---- leaving

void EditImageIntialView::onCropToolBarDoneBtnClicked() {
    if (_isRotationIconLocked || _isCropOver) return;
    const auto alive = self();
    commitRotateChanges();
    moveContentToCenter();
    resetTimer();
    matchOverlayViewToCropGridView();
    if (const auto overlay = overlayView()) overlay->setOverlayLevel(overlayLevelWhenOver);
    _isCropOver = true;
    clearOperation();
    saveProperties();
    if (_leavesWhenUnchanged && keepsWholePicture()) return goBackToEditView();
    animate(leaveDuration, [this] { _eIScrollView->cropImage(_eIScrollView->lastCropFrame()); });
    const gfx::ImageRef image = cutImage();
    // Nothing to apply, where no memory is left for it.
    if (!image) return goBackToEditView();
    if (const auto delegate = _delegate.lock()) delegate->onCropImageDone(image);
    onCropDone();
}

// Pixels of the picture as it is turned.
gfx::Rect EditImageIntialView::cutRect() const {
    const auto& picture = _eIScrollView->imageView();
    return cropCutRect(_eIScrollView->lastCropFrame(), cropPicture().raster, picture->frame().size,
                       _eIScrollView->zoomScale());
}

bool EditImageIntialView::keepsWholePicture() const {
    if (_currentRotationOrientation != _startRotationOrientation) return false;
    const gfx::PixelSize raster = _originalImage->pixelSize();
    return cutRect().roundedOut().contains(gfx::Rect(0, 0, raster.width, raster.height));
}

gfx::ImageRef EditImageIntialView::cutImage() const {
    const gfx::ImageRef turned =
        MDrawImageUtil::fixOrientation(_eIScrollView->imageView()->image());
    return MDrawImageUtil::imageFromImageInRect(turned, cutRect());
}

void EditImageIntialView::saveProperties() {
    _eIScrollView->setLastGridFrame(_cropFrame);
    _eIScrollView->setLastScale(_eIScrollView->zoomScale());
    _eIScrollView->setLastOffset(_eIScrollView->contentOffset());
    if (const auto overlay = overlayView()) {
        _eIScrollView->setLastCropFrame(overlay->brightFrame());
    }
}

void EditImageIntialView::clearOperation() {
    setGesturesEnabled(false);
    _cropEdge = CropEdge::None;
    _isToolBarOccupy = false;
}

void EditImageIntialView::onCropToolBarCancelBtnClicked() {
    if (!_isRotationIconLocked) cancelCropToolBar();
}

void EditImageIntialView::cancelCropToolBar() {
    const auto alive = self();
    if (!_isCropping || _isCropOver) return;
    _eIScrollView->stopMoving();
    revertRotateChanges();
    restoreLayoutContentImage();
    moveContentToCenter();
    resetTimer();
    if (const auto overlay = overlayView()) overlay->setOverlayLevel(overlayLevelWhenOver);
    _isCropOver = true;
    clearOperation();
    goBackToEditView();
}

void EditImageIntialView::OnClickEditImageBackBarButton() {
    const auto alive = self();
    resetTimer();
    _isCropOver = true;
    revertAllRotationChangesInEditPhase();
    _eIScrollView->onClickCancelBtn();
    if (const auto delegate = _delegate.lock()) delegate->OnClickEditImageBackBarButton();
    setEditImageToolBarHiddenWithAnimationInBeganOrEndPhase(true);
    // What fades out shows it to the end.
    if (!_isFadingOut) _eIScrollView->removeFromSuperview();
    after(leaveDuration, &EditImageIntialView::endEditImageView);
}

void EditImageIntialView::OnClickEditImageDoneBarButton() {
    if (!_originalImage) return;
    if (const auto delegate = _delegate.lock()) delegate->OnClickEditImageDoneBarButton();
}

void EditImageIntialView::fadeOut() {
    if (std::exchange(_isFadingOut, true)) return;
    // Without a picture it is nothing but black.
    if (!_eIScrollView->imageView()->image()) return removeFromSuperview();
    setUserInteractionEnabled(false);
    setAccessibilityModal(false);
    setAccessibilityHidden(true);
    animate(
        fadeDuration, [this] { setAlpha(0); }, [this] { removeFromSuperview(); });
}

void EditImageIntialView::endEditImageView() {
    _isCropping = false;
    _originalImage = nullptr;
    _eIScrollView->imageView()->showPicture(nullptr, 0);
}

}  // namespace kalim
