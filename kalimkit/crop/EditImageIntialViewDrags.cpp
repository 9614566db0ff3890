#include "kalimkit/crop/EditImageIntialView.h"

#include <cmath>
#include <utility>

#include "kalimkit/crop/CropDrag.h"
#include "kalimkit/crop/CropRest.h"

// The fingers on the frame and on the picture under it, and how both come to rest.

namespace kalim {

namespace {

constexpr double settleDelay = 0.4;
constexpr double levelDuration = 0.3;
// Points within which the frame is where it belongs.
constexpr double restTolerance = 1e-6;

bool isNear(const gfx::Rect& a, const gfx::Rect& b) {
    return std::abs(a.minX() - b.minX()) < restTolerance &&
           std::abs(a.minY() - b.minY()) < restTolerance &&
           std::abs(a.maxX() - b.maxX()) < restTolerance &&
           std::abs(a.maxY() - b.maxY()) < restTolerance;
}

}  // namespace

// ---- drags

bool EditImageIntialView::shouldReceiveTouch(const ui::GestureRecognizer& recognizer,
                                             const ui::Touch& touch) {
    if (&recognizer != _gridPanGes.get()) return true;
    if (_gridPanGes->state() == ui::GestureState::Changed) return false;
    const gfx::Point p = touch.locationIn(this);
    const bool isOnBar =
        _cropToolBar && touch.view() && touch.view()->isDescendantOf(*_cropToolBar);
    // On its way back to the middle the frame is caught where it is seen.
    if (isOnBar || !isOnCropBorder(p, _cropGridView->shownFrame())) return false;
    _landingPoint = p;
    return true;
}

void EditImageIntialView::gridPanGestureRecognized(ui::PanGestureRecognizer& pan) {
    if (_isCropOver) return;
    const auto alive = self();
    const gfx::Point p = pan.locationIn(this);
    const bool isOver =
        pan.state() == ui::GestureState::Ended || pan.state() == ui::GestureState::Cancelled;
    if (pan.state() == ui::GestureState::Began) {
        _eIScrollView->stopMoving();
        croppingView();
        _cropTouchPoint = p;
        _cropTouchFrame = _cropFrame;
        _cropLimits =
            CropLimits::from(cropOutcome(cropPicture(), _cropTouchFrame.size, contentFrame().size));
        _cropEdge = cropEdgeForPoint(p);
        // A quick finger has left the edge before the drag begins.
        if (_cropEdge == CropEdge::None) _cropEdge = cropEdgeForPoint(_landingPoint);
    }
    _eIScrollView->setAdmitsGestures(isOver);
    if (isOver) finishCroppingView();
    updateCropLinesWithPoint(p);
}

void EditImageIntialView::croppingView() {
    if (!_isRotating) {
        stopContent();
        matchOverlayViewToCropGridView();
        animate(levelDuration, [this] {
            if (const auto overlay = overlayView()) overlay->setOverlayLevel(overlayLevelInDrags);
        });
        if (!_isInit) _cropToolBar->hideRotateBtnWithAnimation(true, true);
    }
    resetTimer();
}

void EditImageIntialView::startTimer() {
    startTimer(settleDelay);
}

void EditImageIntialView::startTimer(double interval) {
    if (_timer.isRunning()) return;
    _timer.start(interval, true, [this] { triggerTimer(); });
}

void EditImageIntialView::triggerTimer() {
    const auto alive = self();
    moveContentToCenter();
    _cropToolBar->hideRotateBtnWithAnimation(false, true);
    resetTimer();
}

void EditImageIntialView::moveContentToCenter() {
    const auto alive = self();
    if (!_isCropping) return;
    _eIScrollView->stopMoving();
    const CropPlacement placement = CropPlacement::settled(
        _eIScrollView->imageView()->bounds().size, cropShare(), contentFrame());
    const bool isThere =
        isNear(placement.frame, _cropFrame) && isNear(placement.image, _eIScrollView->imageFrame());
    const auto dim = [this] {
        if (const auto overlay = overlayView()) overlay->setOverlayLevel(overlayLevelAtRest);
    };
    if (isThere) return animate(cropSettleDuration, dim);
    animateContent([&] {
        place(placement);
        dim();
    });
}

void EditImageIntialView::animateContent(const std::function<void()>& changes) {
    _isAnimating = true;
    animate(cropSettleDuration, changes,
            [this, motion = ++_motions] { contentCameToRest(motion); });
}

void EditImageIntialView::contentCameToRest(int motion) {
    // What began meanwhile has taken over.
    if (motion != _motions || !std::exchange(_isAnimating, false)) return;
    matchOverlayViewToCropGridView();
    checkForCanRevert();
    const auto overlay = overlayView();
    if (overlay && !_isCropOver) overlay->setOverlayLevel(overlayLevelAtRest);
}

// What moves by itself stays where it is seen at this moment, frame and picture alike; else each
// part that is not changed next would go on by itself.
void EditImageIntialView::stopContent() {
    if (!std::exchange(_isAnimating, false)) return;
    const auto& picture = _eIScrollView->imageView();
    const gfx::Rect frame = _cropGridView->shownFrame();
    const gfx::Rect shown = picture->shownRectInWindow();
    const gfx::Size size = picture->bounds().size;
    place({size,
           shown.size.width / size.width,
           {convertPointFrom(shown.origin, nullptr), shown.size},
           frame});
    // Fingers that are down go on from here, with the frame's inset.
    _eIScrollView->setContentOffset(_eIScrollView->contentOffset());
}

// ---- the picture moves under the frame

std::shared_ptr<ui::View> EditImageIntialView::viewForZoomingInScrollView(ui::ScrollView&) {
    return _eIScrollView ? _eIScrollView->imageView() : nullptr;
}

void EditImageIntialView::contentDidMove() {
    if (!_isCropping || _isAnimating || _isRotating) return;
    matchOverlayViewToCropGridView();
    checkForCanRevert();
}

void EditImageIntialView::scrollViewDidScroll(ui::ScrollView& /*view*/) {
    contentDidMove();
}

void EditImageIntialView::scrollViewDidZoom(ui::ScrollView& /*view*/) {
    contentDidMove();
}

void EditImageIntialView::scrollViewWillBeginDragging(ui::ScrollView& /*view*/) {
    if (_isCropping) croppingView();
}

void EditImageIntialView::scrollViewWillBeginZooming(ui::ScrollView& /*view*/) {
    if (_isCropping) croppingView();
}

void EditImageIntialView::scrollViewDidEndDragging(ui::ScrollView& /*view*/,
                                                   bool /*willDecelerate*/) {
    finishMovingContent();
}

void EditImageIntialView::scrollViewDidEndDecelerating(ui::ScrollView& /*view*/) {
    finishMovingContent();
}

void EditImageIntialView::scrollViewDidEndZooming(ui::ScrollView& /*view*/, double /*scale*/) {
    finishMovingContent();
}

// Fingers may be left, or the content may go on by itself.
void EditImageIntialView::finishMovingContent() {
    const EditImageScrollView& content = *_eIScrollView;
    const bool isMoving = content.isDragging() || content.isZooming() || content.isDecelerating() ||
                          content.isZoomBouncing();
    if (_isCropping && !_isCropOver && !isMoving) finishCroppingView();
}

void EditImageIntialView::setGesturesEnabled(bool enabled) {
    if (_gridPanGes) _gridPanGes->setEnabled(enabled);
    panGestureRecognizer()->setEnabled(enabled);
    pinchGestureRecognizer()->setEnabled(enabled);
}

// Those that are down have no more say.
void EditImageIntialView::letGoOfFingers() {
    setGesturesEnabled(false);
    setGesturesEnabled(true);
}

}  // namespace kalim
