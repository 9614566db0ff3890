#include "kalimkit/canvas/ZoomedCanvasView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/CanvasGlide.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr double ordinaryLargestScale = 2.0;

}  // namespace

ZoomedCanvasView::ZoomedCanvasView() = default;

ZoomedCanvasView::~ZoomedCanvasView() = default;

// ---- the scale

// Changes what is shown, and has it displayed where that makes a difference.
template <typename Change>
void ZoomedCanvasView::changeView(Change change) {
    const gfx::AffineTransform before = mViewTransform();
    change();
    if (mViewTransform() == before) return;
    setNeedsLayout();
    setNeedsDisplay();
}

void ZoomedCanvasView::setFScal(float scale) {
    changeView([&] { _zoom.setImposedScale(scale); });
}

void ZoomedCanvasView::checkAndUpdateCTXScale() {
    changeView([&] { _zoom.clamp(); });
}

void ZoomedCanvasView::autoScaleWhenCtxEnlarged() {
    const gfx::AffineTransform before = shownTransform();
    // Without a picture the first thing drawn is all of the content; it stays where it was drawn.
    if (!_picture.source() && !_zoom.isLargerThanView(_ctxRect)) {
        _zoom.allowOrdinaryZoom();
        return;
    }
    changeView([&] { _zoom.fit(_ctxRect); });
    settleView(before);
}

void ZoomedCanvasView::setLargestMagnification(double pixels) {
    if (!(pixels >= 0) || std::isinf(pixels)) return;
    _largestMagnification = pixels;
    placeCanvas();
}

// The zoom at which so many pixels of the screen come to one of the picture; 0 without a picture.
double ZoomedCanvasView::scaleForMagnification(double pixels) const {
    const double shown = _picture.fittingScale() * ui::Environment::current().screen().scale;
    return pixels * _picture.pixelsPerPoint() / shown;
}

// Has the view go to how the change leaves it.
template <typename Change>
bool ZoomedCanvasView::glide(Change change) {
    if (_zoom.isHeld() || !mayMoveView()) return false;
    const gfx::AffineTransform before = shownTransform();
    _glide = nullptr;
    changeView(change);
    settleView(before);
    // Where nothing glides, the view has come to rest already.
    setNeedsLayout();
    setNeedsDisplay();
    return true;
}

bool ZoomedCanvasView::zoomToFit() {
    return glide([this] { _zoom.showWhole(_ctxRect); });
}

bool ZoomedCanvasView::zoomToPixels() {
    const double scale = scaleForMagnification(1);
    return scale > 0 && glide([&] { _zoom.zoomTo(scale, _ctxRect); });
}

bool ZoomedCanvasView::zoomBy(double factor) {
    if (!(factor > 0) || std::isinf(factor)) return false;
    return glide([&] { _zoom.zoomTo(_zoom.scale() * factor, _ctxRect); });
}

gfx::Point ZoomedCanvasView::invertViewPoint(gfx::Point p) const {
    constexpr double fractions = 256;
    const gfx::Point point = _zoom.toCanvas().apply(p);
    if (!_picture.hasBasis()) return point;
    return {std::round(point.x * fractions) / fractions,
            std::round(point.y * fractions) / fractions};
}

// ---- the view's size

void ZoomedCanvasView::setLayoutMargin(const ui::EdgeInsets& margin) {
    const auto isAmount = [](double amount) { return amount >= 0 && std::isfinite(amount); };
    const bool isMargin = isAmount(margin.top) && isAmount(margin.left) &&
                          isAmount(margin.bottom) && isAmount(margin.right);
    if (!isMargin || margin == _layoutMargin) return;
    _layoutMargin = margin;
    setNeedsLayout();
    setNeedsDisplay();
}

gfx::Rect ZoomedCanvasView::room() const {
    const gfx::Rect room = _layoutMargin.apply(bounds());
    return room.isEmpty() ? bounds() : room;
}

void ZoomedCanvasView::placeCanvas() {
    changeView([&] {
        const gfx::Rect canvas = _picture.isSettled() ? _picture.canvas() : room();
        // A margin sets the picture apart from the screen's edges already.
        const bool isScreenShot = _picture.fillsView() && _layoutMargin == ui::EdgeInsets{};
        const double largest =
            std::max(ordinaryLargestScale, scaleForMagnification(_largestMagnification));
        _zoom.setPlace({canvas.center(), room(), _picture.fittingScale(), isScreenShot, largest});
    });
}

ZoomedCanvasView::Fitting ZoomedCanvasView::fitPicture(bool isUnused) {
    const double screenScale = ui::Environment::current().screen().scale;
    const gfx::Rect room = this->room();
    if (room.isEmpty() || _picture.isShownIn(room, screenScale)) return Fitting::Nothing;
    const bool isResized = !_picture.isShownIn(room, _picture.screenScale());
    const bool isUnsettled = isUnused || !_picture.isSettled();
    if (isUnused) {
        _picture.take(nullptr, room);
    } else {
        _picture.showIn(room, screenScale);
    }
    if (isUnsettled) return Fitting::Settled;
    return isResized ? Fitting::Resized : Fitting::NewScale;
}

void ZoomedCanvasView::fitResized() {
    resetView();
    const bool isAsFirstShown = !_picture.source() && room().size == _picture.canvas().size;
    if (!_ctxRect.isEmpty() && (!isAsFirstShown || _zoom.isLargerThanView(_ctxRect))) {
        changeView([&] { _zoom.fit(_ctxRect); });
    }
}

// ---- what is shown

void ZoomedCanvasView::resetView() {
    _glide = nullptr;
    const bool wasHeld = _zoom.isHeld();
    changeView([&] { _zoom.reset(); });
    placeCanvas();
    if (!wasHeld) return;
    viewGestureDidEnd();
}

bool ZoomedCanvasView::isViewMoving() const {
    return _zoom.isHeld() || _glide;
}

gfx::AffineTransform ZoomedCanvasView::shownTransform() const {
    return _glide ? _glide->shown() : mViewTransform();
}

// Glides from how the view is shown to how it is from now on.
void ZoomedCanvasView::settleView(const gfx::AffineTransform& from) {
    if (from == mViewTransform() || !window()) return;
    if (ui::Environment::current().prefersReducedMotion()) {
        _glide = nullptr;
        return;
    }
    const std::weak_ptr<ui::View> weakSelf = weak_from_this();
    _glide = std::make_unique<CanvasGlide>(
        from, mViewTransform(), ui::Environment::current().runLoop(), [weakSelf](bool isOver) {
            const auto view = std::static_pointer_cast<ZoomedCanvasView>(weakSelf.lock());
            if (!view) return;
            if (isOver) view->_glide = nullptr;
            view->setNeedsLayout();
            view->setNeedsDisplay();
        });
}

// ---- gestures

void ZoomedCanvasView::watch(const std::shared_ptr<ui::GestureRecognizer>& gesture,
                             std::function<void(ui::GestureState)> handle) {
    gesture->setCancelsTouches(false);
    gesture->setRecognizesSimultaneously(true);
    gesture->setHandler([weakSelf = weak_from_this(),
                         handle = std::move(handle)](ui::GestureRecognizer& recognized) {
        if (const auto view = weakSelf.lock()) handle(recognized.state());
    });
    addGestureRecognizer(gesture);
}

void ZoomedCanvasView::addViewGestures() {
    _pinchGesture = std::make_shared<ui::PinchGestureRecognizer>();
    _panGesture = std::make_shared<ui::PanGestureRecognizer>();
    _panGesture->setMinimumNumberOfTouches(2);
    _panGesture->setMaximumNumberOfTouches(2);
    watch(_pinchGesture, [this](ui::GestureState state) {
        handlePinchGesture(state, _pinchGesture->scale(), _pinchGesture->locationIn(this));
    });
    watch(_panGesture, [this](ui::GestureState state) {
        handlePanGesture(state, _panGesture->translationIn(this));
    });
}

void ZoomedCanvasView::handlePinchGesture(ui::GestureState state, double scale, gfx::Point focus) {
    if (!std::isfinite(scale) || !(scale > 0)) return;
    const auto alive = shared_from_this();
    if (state == ui::GestureState::Began && mayZoomView()) {
        beginViewGesture();
        _zoom.beginPinch();
    }
    if (!_zoom.isPinching()) return;
    changeView([&] { _zoom.pinch(scale, focus); });
    if (state == ui::GestureState::Began || state == ui::GestureState::Changed) return;
    changeView([&] { _zoom.endPinch(focus, _ctxRect); });
    endViewGesture();
}

void ZoomedCanvasView::handlePanGesture(ui::GestureState state, gfx::Point translation) {
    if (!std::isfinite(translation.x) || !std::isfinite(translation.y)) return;
    const auto alive = shared_from_this();
    if (state == ui::GestureState::Began && mayMoveView()) {
        beginViewGesture();
        _zoom.beginPan();
    }
    if (!_zoom.isPanning()) return;
    changeView([&] { _zoom.pan(translation); });
    if (state == ui::GestureState::Began || state == ui::GestureState::Changed) return;
    _zoom.endPan();
    endViewGesture();
}

void ZoomedCanvasView::beginViewGesture() {
    if (std::exchange(_glide, nullptr)) setNeedsDisplay();
    if (_zoom.isHeld()) return;
    viewGestureDidBegin();
}

// Two fingers may pinch and pan at once; the view comes to rest when both are over.
void ZoomedCanvasView::endViewGesture() {
    if (_zoom.isHeld()) return;
    settleView(_zoom.settle(_ctxRect));
    setNeedsLayout();
    setNeedsDisplay();
    viewGestureDidEnd();
}

}  // namespace kalim
