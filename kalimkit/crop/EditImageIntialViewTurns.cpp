#include <numbers>
#include <string>
#include <utility>

#include "kalimkit/crop/CropRest.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/tool/MDrawLogUtil.h"

namespace kalim {

namespace {

constexpr double turnDuration = 0.4;
constexpr double turnVelocity = 0.8;
constexpr double gridFadeDuration = 0.2;

}  // namespace

// ---- from the tool bar

void EditImageIntialView::onCropToolBarRotateBtnClicked() {
    if (_isRotationIconLocked) return;
    const auto alive = self();
    resetTimer();
    rotateImageToOrientationWithAnimationCompletion(
        nextCropOrientation(_currentRotationOrientation), _isAnimateEnable);
}

void EditImageIntialView::rotateImageToOrientationWithAnimationCompletion(std::int32_t orientation,
                                                                          bool animated,
                                                                          Completion completion) {
    const auto alive = self();
    const std::int32_t turns = cropQuarterTurns(_currentRotationOrientation, orientation);
    if (turns == 0 || !_isCropping || _isRotating) {
        const bool isThere = orientation == _currentRotationOrientation;
        if (completion) completion(isThere);
        return;
    }
    stopContent();
    turnTo(turns, turnedCropShare(cropShare(), turns), animated, std::move(completion));
}

// ---- turning

// Until the end the old picture is shown turned; then a turned one takes its place, to the point.
void EditImageIntialView::turnTo(std::int32_t quarterTurns, const gfx::Rect& share, bool animated,
                                 Completion completion) {
    _isRotationIconLocked = true;
    _isRotating = true;
    setGesturesEnabled(false);
    // Also what a finger has set going that was down until now.
    _eIScrollView->stopMoving();
    resetTimer();
    const CropPlacement next = placementAfter(quarterTurns, share);
    const gfx::Rect seen = _eIScrollView->imageFrame();
    const double oldLength = quarterTurns == 2 ? seen.size.width : seen.size.height;
    const double scale = next.image.size.width / oldLength;
    MDrawLogUtil::sharedInstance().logInfoMethodName(
        "edit image: rotate: x = " + std::to_string(next.image.minX()) +
            ", y = " + std::to_string(next.image.minY()) +
            ", width = " + std::to_string(next.image.size.width) + ", height = " +
            std::to_string(next.image.size.height) + ", scale = " + std::to_string(scale),
        "rotateImageToOrientation:withAnimation:completion:");
    if (!animated) {
        finishTurn(quarterTurns, share);
        if (completion) completion(true);
        return;
    }
    _cropGridView->setAlpha(0);
    const std::weak_ptr<EditImageIntialView> weakSelf = self();
    ui::AnimationOptions options;
    options.duration = turnDuration;
    options.spring = ui::Spring{1, turnVelocity};
    const auto changes = [&] { showTurn(quarterTurns, next, scale); };
    anchorAt(_cropFrame.center());
    View::animate(options, changes,
                  [weakSelf, quarterTurns, share, completion = std::move(completion)](bool) {
                      const auto view = weakSelf.lock();
                      if (!view) return;
                      if (!view->_isCropOver) view->finishTurn(quarterTurns, share);
                      if (completion) completion(true);
                  });
}

// What the scroll view turns about becomes that point; what is seen stays where it is.
void EditImageIntialView::anchorAt(gfx::Point p) {
    const gfx::Point by = p - _eIScrollView->center();
    _eIScrollView->setCenter(p);
    _eIScrollView->setBounds(_eIScrollView->bounds().offset(by));
}

void EditImageIntialView::showTurn(std::int32_t quarterTurns, const CropPlacement& placement,
                                   double scale) {
    const auto turn =
        gfx::AffineTransform::rotation(quarterTurns * std::numbers::pi / 2).scaled(scale, scale);
    const gfx::Point fromCenter = _cropFrame.center() - _eIScrollView->imageFrame().center();
    _eIScrollView->setTransform(turn);
    _eIScrollView->setCenter(placement.image.center() + turn.apply(fromCenter));
}

void EditImageIntialView::finishTurn(std::int32_t quarterTurns, const gfx::Rect& share) {
    _eIScrollView->setTransform({});
    _eIScrollView->setFrame(scrollFrame());
    const CropPlacement placement = placementAfter(quarterTurns, share);
    rotateImageDirectly(quarterTurns == 1);
    if (quarterTurns == 2) rotateImageDirectly(false);
    _isRotating = false;
    place(placement);
    layoutContent();
    _isRotationIconLocked = false;
    setGesturesEnabled(true);
    ui::AnimationOptions options;
    options.duration = gridFadeDuration;
    View::animate(options, [this] {
        _cropGridView->setAlpha(1);
        if (const auto overlay = overlayView()) overlay->setOverlayLevel(overlayLevelAtRest);
    });
    _cropToolBar->hideRotateBtnWithAnimation(false, true);
}

CropPlacement EditImageIntialView::placementAfter(std::int32_t quarterTurns,
                                                  const gfx::Rect& share) const {
    gfx::Size image = _eIScrollView->imageView()->pixelsSeen();
    if (quarterTurns != 2) std::swap(image.width, image.height);
    return CropPlacement::settled(image, share, contentFrame());
}

// The picture is seen turned from then on, so that frame, zoom and cut need not know of turns; its
// pixels are turned when they are cut.
void EditImageIntialView::rotateImageDirectly(bool isBackwards) {
    _currentRotationOrientation = (_currentRotationOrientation + (isBackwards ? 3 : 1)) % 4;
    _eIScrollView->imageView()->showPicture(
        _originalImage, (_currentRotationOrientation - _startRotationOrientation + 4) % 4);
}

// ---- keeping and taking back

void EditImageIntialView::commitRotateChanges() {
    _eIScrollView->onImageRotatedByOrientation(_currentRotationOrientation);
}

void EditImageIntialView::revertRotateChanges() {
    const std::int32_t difference =
        _eIScrollView->rotationOrientationOverall() - _currentRotationOrientation;
    const CropTurnsBack back = cropTurnsBack(difference);
    for (int turn = 0; turn < back.count; ++turn)
        rotateImageDirectly(back.isBackwards);
}

void EditImageIntialView::revertAllRotationChangesInEditPhase() {
    _currentRotationOrientation = _startRotationOrientation;
    _eIScrollView->onImageRotatedByOrientation(_startRotationOrientation);
}

}  // namespace kalim
