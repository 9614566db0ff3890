#include "kalimkit/canvas/ZoomedCanvasView.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/canvas/CanvasShown.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/PinchGestureRecognizer.h"

namespace kalim {

namespace {

constexpr double ordinaryLargestScale = 2.0;

}  // namespace

ZoomedCanvasView::ZoomedCanvasView() : _shown(std::make_unique<CanvasShown>()) {}

ZoomedCanvasView::~ZoomedCanvasView() = default;

// ---- the canvas

const gfx::ImageRef& ZoomedCanvasView::bgImg() const {
    return _shown->picture.fitted();
}

const gfx::ImageRef& ZoomedCanvasView::sourceImage() const {
    return _shown->picture.source();
}

const gfx::Rect& ZoomedCanvasView::bgImgRect() const {
    return _shown->picture.rect();
}

const gfx::Rect& ZoomedCanvasView::ctxRect() const {
    return _shown->content;
}

const PictureCut& ZoomedCanvasView::pictureCut() const {
    return _shown->picture.cut();
}

// ---- the scale

double ZoomedCanvasView::getScale() const {
    return _shown->zoom.scale();
}

double ZoomedCanvasView::contextScale() const {
    return _shown->zoom.contextScale();
}

double ZoomedCanvasView::defaultMinScale() const {
    return _shown->zoom.defaultMinScale();
}

double ZoomedCanvasView::largestScale() const {
    return _shown->zoom.largestScale();
}

const gfx::AffineTransform& ZoomedCanvasView::mViewTransform() const {
    return _shown->zoom.toView();
}

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
    changeView([&] { _shown->zoom.setImposedScale(scale); });
}

void ZoomedCanvasView::checkAndUpdateCTXScale() {
    changeView([&] { _shown->zoom.clamp(); });
}

void ZoomedCanvasView::autoScaleWhenCtxEnlarged() {
    const gfx::AffineTransform before = _shown->transform();
    // Without a picture the first thing drawn is all of the content; it stays where it was drawn.
    if (!_shown->picture.source() && !_shown->zoom.isLargerThanView(_shown->content)) {
        _shown->zoom.allowOrdinaryZoom();
        return;
    }
    changeView([&] { _shown->zoom.fit(_shown->content); });
    settleView(before);
}

void ZoomedCanvasView::setLargestMagnification(double pixels) {
    if (!(pixels >= 0) || std::isinf(pixels)) return;
    _largestMagnification = pixels;
    placeCanvas();
}

// The zoom at which so many pixels of the screen come to one of the picture; 0 without a picture.
double ZoomedCanvasView::scaleForMagnification(double pixels) const {
    const double shown = _shown->picture.fittingScale() * ui::Environment::current().screen().scale;
    return pixels * _shown->picture.pixelsPerPoint() / shown;
}

// Has the view go to how the change leaves it.
template <typename Change>
bool ZoomedCanvasView::glide(Change change) {
    if (_shown->zoom.isHeld() || !mayMoveView()) return false;
    const gfx::AffineTransform before = _shown->transform();
    _shown->glide = nullptr;
    changeView(change);
    settleView(before);
    // Where nothing glides, the view has come to rest already.
    setNeedsLayout();
    setNeedsDisplay();
    return true;
}

bool ZoomedCanvasView::zoomToFit() {
    return glide([this] { _shown->zoom.showWhole(_shown->content); });
}

bool ZoomedCanvasView::zoomToPixels() {
    return zoomToMagnification(1);
}

bool ZoomedCanvasView::zoomToMagnification(double pixels) {
    const double scale = scaleForMagnification(pixels);
    return scale > 0 && glide([&] { _shown->zoom.zoomTo(scale, _shown->content); });
}

double ZoomedCanvasView::magnification() const {
    const double pixels = scaleForMagnification(1);
    return sourceImage() && pixels > 0 ? _shown->zoom.scale() / pixels : 0;
}

double ZoomedCanvasView::pixelsPerPoint() const {
    return _shown->picture.pixelsPerPoint();
}

std::optional<gfx::Point> ZoomedCanvasView::picturePoint(gfx::Point p) const {
    if (!sourceImage()) return std::nullopt;
    const gfx::PixelSize pixels = sourceImage()->pixelSize();
    const PictureCut& cut = pictureCut();
    const gfx::Point inPicture = (p - bgImgRect().origin) * pixelsPerPoint();
    const gfx::Point corner = turnedPart(partOf(cut, pixels), pixels, cut.quarterTurns).origin;
    return turnedPart({inPicture, {}}, pixels, cut.quarterTurns).origin - corner;
}

bool ZoomedCanvasView::zoomBy(double factor) {
    if (!(factor > 0) || std::isinf(factor)) return false;
    return glide([&] { _shown->zoom.zoomTo(_shown->zoom.scale() * factor, _shown->content); });
}

gfx::Point ZoomedCanvasView::invertViewPoint(gfx::Point p) const {
    constexpr double fractions = 256;
    const gfx::Point point = _shown->zoom.toCanvas().apply(p);
    if (!_shown->picture.hasBasis()) return point;
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
        const CanvasPicture& picture = _shown->picture;
        const gfx::Rect canvas = picture.isSettled() ? picture.canvas() : room();
        const gfx::Rect middle = picture.isCropped() ? picture.part() : canvas;
        // A margin sets the picture apart from the screen's edges already.
        const bool isScreenShot = picture.fillsView() && _layoutMargin == ui::EdgeInsets{};
        const double largest =
            std::max(ordinaryLargestScale, scaleForMagnification(_largestMagnification));
        _shown->zoom.setPlace({middle.center(), room(), picture.cut().quarterTurns,
                               picture.fittingScale(), isScreenShot, largest});
    });
}

ZoomedCanvasView::Fitting ZoomedCanvasView::fitPicture(bool isUnused) {
    const double screenScale = ui::Environment::current().screen().scale;
    const gfx::Rect room = this->room();
    if (room.isEmpty() || _shown->picture.isShownIn(room, screenScale)) return Fitting::Nothing;
    const bool isResized = !_shown->picture.isShownIn(room, _shown->picture.screenScale());
    const bool isUnsettled = isUnused || !_shown->picture.isSettled();
    if (isUnused) {
        _shown->picture.take(nullptr, room);
    } else {
        _shown->picture.showIn(room, screenScale);
    }
    if (isUnsettled) return Fitting::Settled;
    return isResized ? Fitting::Resized : Fitting::NewScale;
}

void ZoomedCanvasView::fitResized() {
    resetView();
    const bool isAsFirstShown =
        !_shown->picture.source() && room().size == _shown->picture.canvas().size;
    if (!_shown->content.isEmpty() &&
        (!isAsFirstShown || _shown->zoom.isLargerThanView(_shown->content))) {
        changeView([&] { _shown->zoom.fit(_shown->content); });
    }
}

std::optional<ZoomedCanvasView::ChosenZoom> ZoomedCanvasView::chosenZoom() const {
    const CanvasZoom& zoom = _shown->zoom;
    CanvasZoom whole = zoom;
    whole.showWhole(_shown->content);
    // What is laid out the same may differ by the last bits.
    constexpr double sameScale = 1e-6;
    constexpr double samePlace = 0.01;
    const gfx::Point middle = zoom.toCanvas().apply(zoom.bounds().center());
    const gfx::Point moved = whole.toView().apply(middle) - zoom.bounds().center();
    const bool isWhole = std::abs(whole.shownScale() / zoom.shownScale() - 1) < sameScale &&
                         std::hypot(moved.x, moved.y) < samePlace;
    if (isWhole || zoom.bounds().isEmpty()) return std::nullopt;
    return ChosenZoom{zoom.shownScale(), middle};
}

void ZoomedCanvasView::restoreZoom(const ChosenZoom& chosen) {
    changeView([&] {
        CanvasZoom& zoom = _shown->zoom;
        zoom.zoomTo(chosen.shownScale / _shown->picture.fittingScale(), _shown->content);
        zoom.beginPan();
        zoom.pan(zoom.bounds().center() - zoom.toView().apply(chosen.middle));
        zoom.endPan();
        zoom.settle(_shown->content);
    });
}

// ---- what is shown

void ZoomedCanvasView::resetView() {
    _shown->glide = nullptr;
    const bool wasHeld = _shown->zoom.isHeld();
    changeView([&] { _shown->zoom.reset(); });
    placeCanvas();
    if (!wasHeld) return;
    viewGestureDidEnd();
}

ZoomedCanvasView::Seen ZoomedCanvasView::seen() const {
    const CutGlide* const cut = _shown->changingCut();
    return {_shown->transform(), cut ? cut->shown() : _shown->content};
}

void ZoomedCanvasView::takeCut(const PictureCut& cut) {
    _shown->picture.setCut(cut);
    resetView();
    setNeedsLayout();
    setNeedsDisplay();
}

void ZoomedCanvasView::glideFrom(const Seen& before) {
    settleView(before.transform);
    if (_shown->glide) _shown->glide->changeCut(before.content, _shown->content, bounds());
}

void ZoomedCanvasView::endCutGlide() {
    if (!_shown->changingCut()) return;
    _shown->glide = nullptr;
    setNeedsLayout();
    setNeedsDisplay();
}

// Glides from how the view is shown to how it is from now on.
void ZoomedCanvasView::settleView(const gfx::AffineTransform& from) {
    if (from == mViewTransform() || !window()) return;
    if (ui::Environment::current().prefersReducedMotion()) {
        _shown->glide = nullptr;
        return;
    }
    const std::weak_ptr<ui::View> weakSelf = weak_from_this();
    _shown->glide = std::make_unique<CanvasGlide>(
        from, mViewTransform(), ui::Environment::current().runLoop(), [weakSelf](bool isOver) {
            const auto view = std::static_pointer_cast<ZoomedCanvasView>(weakSelf.lock());
            if (!view) return;
            if (isOver) view->_shown->glide = nullptr;
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
        _shown->zoom.beginPinch();
    }
    if (!_shown->zoom.isPinching()) return;
    changeView([&] { _shown->zoom.pinch(scale, focus); });
    if (state == ui::GestureState::Began || state == ui::GestureState::Changed) return;
    changeView([&] { _shown->zoom.endPinch(focus, _shown->content); });
    endViewGesture();
}

void ZoomedCanvasView::handlePanGesture(ui::GestureState state, gfx::Point translation) {
    if (!std::isfinite(translation.x) || !std::isfinite(translation.y)) return;
    const auto alive = shared_from_this();
    if (state == ui::GestureState::Began && mayMoveView()) {
        beginViewGesture();
        _shown->zoom.beginPan();
    }
    if (!_shown->zoom.isPanning()) return;
    changeView([&] { _shown->zoom.pan(translation); });
    if (state == ui::GestureState::Began || state == ui::GestureState::Changed) return;
    _shown->zoom.endPan();
    endViewGesture();
}

void ZoomedCanvasView::beginViewGesture() {
    if (std::exchange(_shown->glide, nullptr)) {
        setNeedsLayout();
        setNeedsDisplay();
    }
    if (_shown->zoom.isHeld()) return;
    viewGestureDidBegin();
}

// Two fingers may pinch and pan at once; the view comes to rest when both are over.
void ZoomedCanvasView::endViewGesture() {
    if (_shown->zoom.isHeld()) return;
    settleView(_shown->zoom.settle(_shown->content));
    setNeedsLayout();
    setNeedsDisplay();
    viewGestureDidEnd();
}

}  // namespace kalim
