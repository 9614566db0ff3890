#include "kalimkit/crop/CropRest.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

namespace {

constexpr std::int32_t cropTool = 4;
constexpr double openingDuration = 0.3;
constexpr double readyDelay = 0.1;
constexpr double barHeight = 63;
// Of the bar's top from the bottom of the view or of what is safe there.
constexpr double barRise = 60;
// Under the tool bar.
constexpr std::size_t gridIndex = 1;

}  // namespace

void EditImageIntialView::onEditImageWithEditEntrance(const gfx::ImageRef& /*image*/,
                                                      std::int32_t /*entrance*/) {
    const auto alive = self();
    const std::weak_ptr<EditImageIntialView> weakSelf = alive;
    setEditImageToolBarHiddenWithAnimationInBeganOrEndPhase(false);
    const auto delegate = _delegate.lock();
    if (!delegate) return;
    delegate->getOriginalImage([weakSelf](const gfx::ImageRef& original, std::int32_t) {
        if (const auto view = weakSelf.lock()) view->didGetOriginalImage(original);
    });
    delegate->getDisplayImage([weakSelf](const gfx::ImageRef& shown, std::int32_t, std::int32_t) {
        const auto view = weakSelf.lock();
        if (view && shown && !view->_originalImage)
            view->showImage(MDrawImageUtil::fixOrientation(shown));
    });
}

void EditImageIntialView::didGetOriginalImage(const gfx::ImageRef& image) {
    _originalImage = MDrawImageUtil::fixOrientation(image);
    if (!_originalImage) return OnClickEditImageBackBarButton();
    showImage(_originalImage);
    onCropEditImage();
}

// Where whoever opened the editor shows it; else where it fits.
gfx::Rect EditImageIntialView::placeAtOpening(const gfx::ImageRef& image) const {
    const auto delegate = _delegate.lock();
    if (const auto seen = delegate ? delegate->originalImageFrame() : std::nullopt;
        seen && !seen->isEmpty()) {
        return toSuperview().inverted().apply(*seen);
    }
    return ui::imageRectIn(bounds(), image->size(), ui::ContentMode::AspectFit);
}

void EditImageIntialView::showImage(const gfx::ImageRef& image) {
    const gfx::Rect place = placeAtOpening(image);
    _eIScrollView->imageView()->showPicture(image, 0);
    // What is transparent is seen as on the canvas.
    _eIScrollView->imageView()->setBackgroundColor(gfx::makeColor(1, 1, 1));
    _eIScrollView->setFrame(bounds());
    _eIScrollView->placeImage(place.size, 1, place.origin);
    _eIScrollView->setInitialFrame(place);
}

void EditImageIntialView::onCropEditImage() {
    if (!_originalImage) return;
    _eIScrollView->useImageTool(cropTool);
    startCropView(_eIScrollView->cropFrame());
    _isToolBarOccupy = true;
}

void EditImageIntialView::startCropView(const gfx::Rect& frame) {
    if (!_originalImage) return;
    _cropFrame = frame;
    _isCropOver = false;
    makeToolBar();
    _overlayView = _eIScrollView->imageView()->overlayView();
    _currentRotationOrientation = _eIScrollView->rotationOrientationOverall();
    _startRotationOrientation = _currentRotationOrientation;
    _isRotating = false;
    _isRotationIconLocked = true;
    startAnimateToCropFrame();
}

void EditImageIntialView::makeToolBar() {
    if (_cropToolBar) return;
    _cropToolBar = EditImageCropToolBarView::init();
    _cropToolBar->setBBtnUseWord(true);
    _cropToolBar->setDelegate(self());
    layoutToolBar();
    addSubview(_cropToolBar);
    // Before the animation that opens the editor, in which the buttons would fly to their places.
    _cropToolBar->layoutIfNeeded();
    _cropToolBar->setAlpha(1);
}

void EditImageIntialView::layoutToolBar() {
    const auto [width, height] = bounds().size;
    _cropToolBar->setFrame({0, height - barRise - safeAreaBottom(), width, barHeight});
}

// The picture goes from where it is seen into the content.
void EditImageIntialView::startAnimateToCropFrame() {
    _isCropStartAnimationReady = false;
    setGesturesEnabled(false);
    const gfx::Rect seen = _eIScrollView->imageFrame();
    _laidOutSize = bounds().size;
    _naturalTopLength = cropNaturalTopLength(seen.size, bounds().size);
    _eIScrollView->setFrame(scrollFrame());
    const CropPlacement placement = startPlacement();
    const double zoom = seen.size.width / placement.imageSize.width;
    // The size is not in whole points as later, so that nothing is seen to jump.
    _eIScrollView->placeImage(seen.size * (1 / zoom), zoom, seen.origin);
    animate(
        openingDuration,
        [&] {
            _eIScrollView->placeImage(placement.imageSize, placement.zoomScale,
                                      placement.image.origin);
        },
        [this] { postStartCropView(); });
}

void EditImageIntialView::postStartCropView() {
    if (_isCropOver) return;
    _isCropping = true;
    makeGrid();
    makeGridPan();
    initContentImage();
    restoreLayoutContentImage();
    layoutContent();
    _originalScrollViewOffset = _eIScrollView->contentOffset();
    startTimer(0);
    matchOverlayViewToCropGridView();
    setGesturesEnabled(true);
    _isRotationIconLocked = false;
    after(readyDelay, &EditImageIntialView::cropStartAnimationIsReady);
}

void EditImageIntialView::makeGrid() {
    if (_cropGridView) return;
    _cropGridView = EditImageCropGridView::initWithFrame(_cropFrame);
    _cropGridView->setUserInteractionEnabled(false);
    _cropGridView->setAlpha(0);
    insertSubview(_cropGridView, gridIndex);
    animate(openingDuration, [this] { _cropGridView->setAlpha(1); });
}

void EditImageIntialView::makeGridPan() {
    if (_gridPanGes) return;
    const std::weak_ptr<EditImageIntialView> weakSelf = self();
    _gridPanGes = std::make_shared<ui::PanGestureRecognizer>();
    _gridPanGes->setMaximumNumberOfTouches(1);
    _gridPanGes->setDelegate(self());
    _gridPanGes->setHandler([weakSelf](ui::GestureRecognizer& recognizer) {
        const auto view = weakSelf.lock();
        if (view)
            view->gridPanGestureRecognized(static_cast<ui::PanGestureRecognizer&>(recognizer));
    });
    _eIScrollView->panGestureRecognizer()->requireToFail(_gridPanGes);
    addGestureRecognizer(_gridPanGes);
}

void EditImageIntialView::initContentImage() {
    _cropOriginalFrame = startPlacement().frame;
}

void EditImageIntialView::restoreLayoutContentImage() {
    place(startPlacement());
    if (const auto overlay = overlayView()) overlay->setOverlayLevel(overlayLevelAtRest);
}

void EditImageIntialView::setEditImageToolBarHiddenWithAnimationInBeganOrEndPhase(bool hidden) {
    if (!_cropToolBar) return;
    animate(openingDuration, [this, hidden] { _cropToolBar->setAlpha(hidden ? 0 : 1); });
}

}  // namespace kalim
