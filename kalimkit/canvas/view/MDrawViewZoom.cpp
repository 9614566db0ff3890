#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/canvas/view/PictureLayout.h"
#include "kalimkit/canvas/view/ViewAnimation.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

namespace {

constexpr double largestScale = 2.0;
constexpr double ordinaryMinScale = 0.5;
// View points of the content that a pan leaves in sight, in either direction.
constexpr double leftInSight = 44;

// How far to move so that the content, shown from `low` to `high`, lies in the middle of a view of
// this length, or covers it where it is longer.
double moveToCentre(double low, double high, double length) {
    if (high - low <= length) return (length - (low + high)) / 2;
    if (low > 0) return -low;
    return high < length ? length - high : 0;
}

// How far to move so that enough of the content stays in sight.
double moveIntoReach(double low, double high, double length) {
    const double least = std::min({leftInSight, high - low, length});
    if (low > length - least) return length - least - low;
    return high < least ? least - high : 0;
}

}  // namespace

// ---- the scale

double MDrawView::getScale() const {
    const double scale = _contextScale * _tmpContextScale;
    if (std::abs(1 - scale) >= 0.0001) return scale;
    if (_fScal > 0.01F) return _fScal;
    return isScreenShot() ? 0.86 : scale;
}

void MDrawView::setFScal(float scale) {
    if (!std::isfinite(scale)) return;
    _fScal = scale;
    processViewTransform();
}

void MDrawView::checkAndUpdateCTXScale() {
    _contextScale = std::max(std::min(_contextScale, largestScale), _defaultMinScale);
    processViewTransform();
}

void MDrawView::autoScaleWhenCtxEnlarged() {
    const gfx::AffineTransform before = shownTransform();
    // Without a picture the first thing drawn is all of the content; it stays where it was drawn.
    if (!_picture.source() && !isLargerThanView()) {
        _defaultMinScale = ordinaryMinScale;
        return;
    }
    fitContent();
    settleView(before);
}

bool MDrawView::isLargerThanView() const {
    const gfx::Size shown = _ctxRect.size * shownScale();
    const gfx::Size room = bounds().size;
    return shown.width > room.width || shown.height > room.height;
}

void MDrawView::fitContent() {
    _defaultMinScale = ordinaryMinScale;
    if (isLargerThanView()) {
        const gfx::Size shown = _ctxRect.size * shownScale();
        const gfx::Size room = bounds().size;
        const double fitting =
            getScale() * std::min(room.width / shown.width, room.height / shown.height);
        // A pinch under way goes on from there.
        _contextScale = fitting / _tmpContextScale;
        _defaultMinScale = std::min(fitting, ordinaryMinScale);
    }
    checkAndUpdateCTXScale();
    centralizeVisualContext();
}

// ---- the view's size

// Brings what is shown up to date with the view's size and the screen's scale. Whether there was
// anything to do.
bool MDrawView::fitIntoView() {
    const double screenScale = ui::Environment::current().screen().scale;
    const gfx::Rect room = bounds();
    if (room.isEmpty() || _picture.isShownIn(room, screenScale)) return false;
    const auto alive = self();
    const gfx::AffineTransform before = _mViewTransform;
    const bool isUnused = !_picture.source() && !hasTools() && !canUndo() && !canRedo();
    const bool isUnsettled = isUnused || !_picture.isSettled();
    const bool isResized = !_picture.isShownIn(room, _picture.screenScale());
    if (isUnused) {
        _picture.take(nullptr, room);
    } else {
        _picture.showIn(room, screenScale);
    }
    if (isUnsettled) {
        _ctxRect = contentRect();
        forgetMosaic();
    }
    if (isResized) {
        resetView();
        processViewTransform();
        const bool isAsFirstShown = !_picture.source() && room.size == _picture.canvas().size;
        if (!_ctxRect.isEmpty() && (!isAsFirstShown || isLargerThanView())) fitContent();
        followView(before);
    }
    invalidateLayers();
    return true;
}

// ---- the transform

void MDrawView::processViewTransform() {
    const gfx::AffineTransform transform =
        canvasToView(_picture.isSettled() ? _picture.canvas().center() : bounds().center(),
                     bounds().center() + _viewMove, shownScale(), _curRotateDegree);
    if (transform == _mViewTransform) return;
    _mViewTransform = transform;
    _mViewInvertTransform = transform.inverted();
    setNeedsLayout();
    setNeedsDisplay();
}

gfx::Point MDrawView::invertViewPoint(gfx::Point p) const {
    return _mViewInvertTransform.apply(p);
}

void MDrawView::resetView() {
    _viewAnimation = nullptr;
    const bool wasHeld = _isPinching || _isPanning;
    _isPinching = _isPanning = _isPictureShrinked = false;
    _shownBeforeClamping.reset();
    _contextScale = _tmpContextScale = 1.0;
    _defaultMinScale = ordinaryMinScale;
    _viewMove = {};
    _curRotateDegree = 0;
    if (!wasHeld) return;
    if (const auto delegate = _drawViewdelegate.lock()) delegate->didCanvasScaleAndPanEnd();
}

bool MDrawView::isViewMoving() const {
    return _isPinching || _isPanning || _viewAnimation;
}

gfx::AffineTransform MDrawView::shownTransform() const {
    return _viewAnimation ? _viewAnimation->shown() : _mViewTransform;
}

// Keeps the canvas point under a view point where it is while the scale changes.
void MDrawView::zoomAbout(gfx::Point focus, const std::function<void()>& change) {
    const gfx::Point fixed = invertViewPoint(focus);
    change();
    processViewTransform();
    _viewMove = _viewMove + (focus - _mViewTransform.apply(fixed));
    processViewTransform();
}

gfx::Point MDrawView::centralizedMove() const {
    const gfx::Rect shown = _mViewTransform.apply(_ctxRect);
    const gfx::Rect room = bounds();
    return _viewMove + gfx::Point{moveToCentre(shown.minX(), shown.maxX(), room.size.width),
                                  moveToCentre(shown.minY(), shown.maxY(), room.size.height)};
}

gfx::Point MDrawView::reachableMove() const {
    const gfx::Rect shown = _mViewTransform.apply(_ctxRect);
    const gfx::Rect room = bounds();
    return _viewMove + gfx::Point{moveIntoReach(shown.minX(), shown.maxX(), room.size.width),
                                  moveIntoReach(shown.minY(), shown.maxY(), room.size.height)};
}

void MDrawView::centralizeVisualContext() {
    _viewMove = centralizedMove();
    processViewTransform();
}

// Glides from how the view is shown to how it is from now on.
void MDrawView::settleView(const gfx::AffineTransform& from) {
    if (from == _mViewTransform || !window()) return;
    const std::weak_ptr<MDrawView> weakSelf = self();
    _viewAnimation = std::make_unique<ViewAnimation>(
        from, _mViewTransform, ui::Environment::current().runLoop(), [weakSelf](bool isOver) {
            const auto view = weakSelf.lock();
            if (!view) return;
            if (isOver) view->_viewAnimation = nullptr;
            view->setNeedsLayout();
            view->setNeedsDisplay();
        });
}

// ---- gestures

// The field of a text that is being typed would stay behind.
bool MDrawView::mayMoveView() const {
    return _enableGesture && !_curEdittingTextTool;
}

void MDrawView::handlePinchGesture(ui::GestureState state, double scale, gfx::Point focus) {
    if (!std::isfinite(scale) || !(scale > 0)) return;
    const auto alive = self();
    if (state == ui::GestureState::Began && mayMoveView()) {
        beginViewGesture();
        _isPinching = true;
    }
    if (!_isPinching) return;
    zoomAbout(focus, [&] { _tmpContextScale = scale; });
    if (state == ui::GestureState::Began || state == ui::GestureState::Changed) return;
    _shownBeforeClamping = _mViewTransform;
    _isPinching = false;
    zoomAbout(focus, [this] {
        _contextScale *= _tmpContextScale;
        _tmpContextScale = 1;
        checkAndUpdateCTXScale();
    });
    const gfx::Size content = _ctxRect.size * shownScale();
    _isPictureShrinked =
        content.width < bounds().size.width || content.height < bounds().size.height;
    endViewGesture();
}

void MDrawView::handlePanGesture(ui::GestureState state, gfx::Point translation) {
    if (!std::isfinite(translation.x) || !std::isfinite(translation.y)) return;
    const auto alive = self();
    if (state == ui::GestureState::Began && mayMoveView()) {
        beginViewGesture();
        _isPanning = true;
        _panTranslation = {};
    }
    if (!_isPanning) return;
    _viewMove = _viewMove + (translation - _panTranslation);
    _panTranslation = translation;
    processViewTransform();
    if (state == ui::GestureState::Began || state == ui::GestureState::Changed) return;
    _isPanning = false;
    endViewGesture();
}

void MDrawView::beginViewGesture() {
    if (std::exchange(_viewAnimation, nullptr)) setNeedsDisplay();
    if (_isPinching || _isPanning) return;
    if (const auto delegate = _drawViewdelegate.lock()) delegate->didCanvasScaleAndPanStart();
}

// Two fingers may pinch and pan at once; the view comes to rest when both are over.
void MDrawView::endViewGesture() {
    if (_isPinching || _isPanning) return;
    const auto before = std::exchange(_shownBeforeClamping, std::nullopt).value_or(_mViewTransform);
    if (std::exchange(_isPictureShrinked, false)) {
        centralizeVisualContext();
    } else {
        _viewMove = reachableMove();
        processViewTransform();
    }
    settleView(before);
    setNeedsLayout();
    setNeedsDisplay();
    if (const auto delegate = _drawViewdelegate.lock()) delegate->didCanvasScaleAndPanEnd();
}

}  // namespace kalim
