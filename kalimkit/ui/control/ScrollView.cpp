#include "kalimkit/ui/control/ScrollView.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

namespace {

bool isScale(double scale) {
    return std::isfinite(scale) && scale > 0;
}

}  // namespace

// Lets the view's own two gestures go on at once, and hears of every finger that lands.
class ScrollView::Fingers : public GestureDelegate {
public:
    explicit Fingers(ScrollView& view) : _view(view) {}

    std::optional<bool> shouldRecognizeSimultaneouslyWith(const GestureRecognizer& /*recognizer*/,
                                                          const GestureRecognizer& other) override {
        if (&other == _view._pan.get() || &other == _view._pinch.get()) return true;
        return std::nullopt;
    }

    // A pan that knows when it is touched and when it is left.
    class Pan : public PanGestureRecognizer {
    protected:
        void touchesBegan(const TouchEvent& event, const std::vector<TouchRef>& active) override {
            if (auto* const scrolled = static_cast<ScrollView*>(view())) scrolled->stopMoving();
            PanGestureRecognizer::touchesBegan(event, active);
        }
        void reset() override {
            PanGestureRecognizer::reset();
            if (auto* const scrolled = static_cast<ScrollView*>(view())) scrolled->fingersLeft();
        }
    };

private:
    // Owns this.
    ScrollView& _view;
};

// ---- making

std::shared_ptr<ScrollView> ScrollView::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : ScrollView {};
    const std::shared_ptr<ScrollView> view = std::make_shared<Constructible>();
    view->init(frame);
    return view;
}

void ScrollView::init(const gfx::Rect& frame) {
    _link = std::make_unique<DisplayLink>(Environment::current().runLoop(),
                                          [this](Time time) { tick(time); });
    _fingers = std::make_shared<Fingers>(*this);
    _pan = std::make_shared<Fingers::Pan>();
    _pinch = std::make_shared<PinchGestureRecognizer>();
    // The recognisers are in the view while they report.
    _pan->setHandler([this](GestureRecognizer&) { dragged(*_pan); });
    _pinch->setHandler([this](GestureRecognizer&) { pinched(*_pinch); });
    _pan->setDelegate(_fingers);
    _pinch->setDelegate(_fingers);
    View::init(frame);
    setClipsToBounds(true);
    setMultipleTouchEnabled(true);
    addGestureRecognizer(_pan);
    addGestureRecognizer(_pinch);
}

void ScrollView::tell(const std::function<void(ScrollViewDelegate&)>& message) {
    const auto alive = shared_from_this();
    if (const auto delegate = _delegate.lock()) message(*delegate);
}

// ---- place

void ScrollView::setContentOffset(gfx::Point offset, bool animated) {
    zoomTo(offset, _zoomScale, animated);
}

void ScrollView::setContentSize(gfx::Size size) {
    if (std::isfinite(size.width) && std::isfinite(size.height))
        _unscaledSize = size * (1 / _zoomScale);
}

void ScrollView::place(gfx::Point offset) {
    if (offset == contentOffset()) return;
    setBounds({offset, bounds().size});
    tell([this](ScrollViewDelegate& delegate) { delegate.scrollViewDidScroll(*this); });
}

ScrollRange ScrollView::horizontalRange(double contentWidth) const {
    const double least = -_contentInset.left;
    return {least, std::max(least, contentWidth + _contentInset.right - bounds().size.width)};
}

ScrollRange ScrollView::verticalRange(double contentHeight) const {
    const double least = -_contentInset.top;
    return {least, std::max(least, contentHeight + _contentInset.bottom - bounds().size.height)};
}

ScrollRange ScrollView::horizontalRange() const {
    return horizontalRange(contentSize().width);
}

ScrollRange ScrollView::verticalRange() const {
    return verticalRange(contentSize().height);
}

gfx::Point ScrollView::clamped(gfx::Point offset, gfx::Size content) const {
    return {horizontalRange(content.width).clamped(offset.x),
            verticalRange(content.height).clamped(offset.y)};
}

bool ScrollView::movesHorizontally() const {
    const ScrollRange range = horizontalRange();
    return range.most > range.least || (_bounces && _alwaysBounceHorizontal) || _isZooming;
}

bool ScrollView::movesVertically() const {
    const ScrollRange range = verticalRange();
    return range.most > range.least || (_bounces && _alwaysBounceVertical) || _isZooming;
}

// ---- scale

std::shared_ptr<View> ScrollView::zoomedView() {
    const auto delegate = _delegate.lock();
    return delegate ? delegate->viewForZoomingInScrollView(*this) : nullptr;
}

double ScrollView::clampedScale(double scale) const {
    return std::clamp(scale, _minimumZoomScale, std::max(_minimumZoomScale, _maximumZoomScale));
}

// Beyond a limit the scale is on a rubber band as well.
double ScrollView::shownScale(double scale) const {
    const double limit = clampedScale(scale);
    if (!_bouncesZoom || scale == limit) return limit;
    const double beyond = scale > limit ? scale / limit : limit / scale;
    const double stretch = 1 + rubberBand(beyond - 1, 1);
    return scale > limit ? limit * stretch : limit / stretch;
}

// The scale that is shown as that one.
double ScrollView::pulledScale(double shown) const {
    const double limit = clampedScale(shown);
    if (shown == limit) return limit;
    const double stretch = shown > limit ? shown / limit : limit / shown;
    const double beyond = 1 + rubberBandPull(stretch - 1, 1);
    return shown > limit ? limit * beyond : limit / beyond;
}

// The content is scaled about its origin.
void ScrollView::applyScale(double scale) {
    const auto zoomed = zoomedView();
    if (!zoomed || scale == _zoomScale) return;
    const double factor = scale / _zoomScale;
    _zoomScale = scale;
    const gfx::Point center = zoomed->center() * factor;
    zoomed->setTransform(gfx::AffineTransform::scaling(scale, scale));
    zoomed->setCenter(center);
    tell([this](ScrollViewDelegate& delegate) { delegate.scrollViewDidZoom(*this); });
}

void ScrollView::setMinimumZoomScale(double scale) {
    if (isScale(scale)) _minimumZoomScale = scale;
}

void ScrollView::setMaximumZoomScale(double scale) {
    if (isScale(scale)) _maximumZoomScale = scale;
}

void ScrollView::zoomTo(gfx::Point offset, double scale, bool animated) {
    if (!std::isfinite(offset.x) || !std::isfinite(offset.y)) return;
    const auto alive = shared_from_this();
    stopMoving();
    if (animated && window()) return glideTo(GlideKind::Animation, offset, scale);
    applyScale(scale);
    place(offset);
    // Fingers that are down go on from here.
    _pulledScale = pulledScale(_zoomScale);
    takeUpOffset();
}

void ScrollView::setZoomScale(double scale, bool animated) {
    if (!isScale(scale) || !zoomedView()) return;
    const double next = clampedScale(scale);
    const double factor = next / _zoomScale;
    const gfx::Point middle{bounds().size.width / 2, bounds().size.height / 2};
    const gfx::Point offset = (contentOffset() + middle) * factor - middle;
    zoomTo(clamped(offset, contentSize() * factor), next, animated);
}

void ScrollView::zoomToRect(const gfx::Rect& rect, bool animated) {
    const auto zoomed = zoomedView();
    if (!zoomed || rect.isEmpty() || bounds().isEmpty()) return;
    const double next = clampedScale(
        std::min(bounds().size.width / rect.size.width, bounds().size.height / rect.size.height));
    const double factor = next / _zoomScale;
    const gfx::Point place = zoomed->toSuperview().apply(rect.center()) * factor;
    const gfx::Point middle{bounds().size.width / 2, bounds().size.height / 2};
    zoomTo(clamped(place - middle, contentSize() * factor), next, animated);
}

bool ScrollView::pointerScrolled(gfx::Point /*p*/, gfx::Point distance) {
    const ScrollRange across = horizontalRange();
    const ScrollRange down = verticalRange();
    const bool goesAcross = across.least < across.most;
    const bool goesDown = down.least < down.most;
    if (!_isScrolledByWheel || isDragging() || !(goesAcross || goesDown)) return false;
    if (goesAcross && !goesDown && distance.x == 0) distance.x = distance.y;
    if (isMirrored()) distance.x = -distance.x;
    const gfx::Point to = contentOffset() - distance;
    setContentOffset({goesAcross ? std::clamp(to.x, across.least, across.most) : contentOffset().x,
                      goesDown ? std::clamp(to.y, down.least, down.most) : contentOffset().y});
    return true;
}

// ---- fingers

void ScrollView::dragged(PanGestureRecognizer& pan) {
    const auto alive = shared_from_this();
    switch (pan.state()) {
        case GestureState::Began:
            beginDragging();
            break;
        case GestureState::Changed: {
            const gfx::Point step = pan.translationIn(this) - _takenTranslation;
            _takenTranslation = pan.translationIn(this);
            // Where the view is mirrored its content goes the other way.
            if (movesHorizontally()) _pulledOffset.x -= isMirrored() ? -step.x : step.x;
            if (movesVertically()) _pulledOffset.y -= step.y;
            showFingers();
            break;
        }
        case GestureState::Ended:
            endDragging(released(pan.velocityIn(this)));
            break;
        case GestureState::Cancelled:
            endDragging({});
            break;
        default:
            break;
    }
}

gfx::Point ScrollView::released(gfx::Point velocity) const {
    return {isMirrored() ? velocity.x : -velocity.x, -velocity.y};
}

void ScrollView::beginDragging() {
    stopMoving();
    _isDragging = true;
    _takenTranslation = {};
    if (!_isZooming) takeUpOffset();
    tell([this](ScrollViewDelegate& delegate) { delegate.scrollViewWillBeginDragging(*this); });
}

void ScrollView::endDragging(gfx::Point velocity) {
    if (!std::exchange(_isDragging, false)) return;
    const bool isBetween = clampedScale(_zoomScale) == _zoomScale;
    const bool goesOn = isBetween && !_isZooming && startInertia(velocity);
    tell([&](ScrollViewDelegate& delegate) { delegate.scrollViewDidEndDragging(*this, goesOn); });
    if (!isBetween && !_isZooming && !_glide) bounceZoom();
}

void ScrollView::pinched(PinchGestureRecognizer& pinch) {
    const auto alive = shared_from_this();
    switch (pinch.state()) {
        case GestureState::Began:
            if (!zoomedView()) return;
            _focus = pinch.locationIn(this) - contentOffset();
            beginZooming();
            break;
        case GestureState::Changed:
            if (!_isZooming) return;
            _focus = pinch.locationIn(this) - contentOffset();
            _pulledScale *= pinch.scale() / _takenScale;
            _takenScale = pinch.scale();
            showFingers();
            break;
        case GestureState::Ended:
        case GestureState::Cancelled:
            endZooming();
            break;
        default:
            break;
    }
}

void ScrollView::beginZooming() {
    stopMoving();
    _isZooming = true;
    _takenScale = 1;
    _pulledScale = pulledScale(_zoomScale);
    if (!_isDragging) takeUpOffset();
    tell([this](ScrollViewDelegate& delegate) { delegate.scrollViewWillBeginZooming(*this); });
}

void ScrollView::endZooming() {
    if (!std::exchange(_isZooming, false)) return;
    // The finger that is left goes on dragging; the scale follows when that leaves too.
    if (clampedScale(_zoomScale) != _zoomScale) {
        if (!_isDragging) bounceZoom();
        return;
    }
    if (!_isDragging) startInertia({});
    tell([this](ScrollViewDelegate& delegate) {
        delegate.scrollViewDidEndZooming(*this, _zoomScale);
    });
}

// Content that was caught beyond an edge does not jump.
void ScrollView::takeUpOffset() {
    const gfx::Size size = bounds().size;
    _pulledOffset = {horizontalRange().unbanded(contentOffset().x, size.width),
                     verticalRange().unbanded(contentOffset().y, size.height)};
}

// Brings what the fingers ask for onto the screen: the scale about the focus, then the offset.
void ScrollView::showFingers() {
    if (_isZooming) {
        const double before = _zoomScale;
        applyScale(shownScale(_pulledScale));
        _pulledOffset = (_pulledOffset + _focus) * (_zoomScale / before) - _focus;
    }
    const gfx::Size size = bounds().size;
    const ScrollRange across = horizontalRange();
    const ScrollRange down = verticalRange();
    place(_bounces ? gfx::Point{across.banded(_pulledOffset.x, size.width),
                                down.banded(_pulledOffset.y, size.height)}
                   : clamped(_pulledOffset, contentSize()));
}

// Fingers that only caught the content leave it where it may not stay.
void ScrollView::fingersLeft() {
    if (_isDragging || _isZooming || _glide) return;
    if (clampedScale(_zoomScale) != _zoomScale) return bounceZoom();
    startInertia({});
}

}  // namespace kalim::ui
