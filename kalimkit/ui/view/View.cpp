#include "kalimkit/ui/view/View.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/ui/motion/ShapeLayer.h"
#include "kalimkit/ui/view/ViewDecoration.h"
#include "kalimkit/ui/view/ViewGesture.h"
#include "kalimkit/ui/view/ViewMotion.h"
#include "kalimkit/ui/view/ViewWindow.h"

namespace kalim::ui {

namespace {

bool isFinite(gfx::Point p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

bool isFinite(const gfx::Rect& rect) {
    return isFinite(rect.origin) && std::isfinite(rect.size.width) &&
           std::isfinite(rect.size.height);
}

bool isFinite(const gfx::AffineTransform& t) {
    return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
           isFinite(gfx::Point{t.tx, t.ty});
}

// A rectangle with a negative side becomes the one that its corners span.
gfx::Rect standardized(const gfx::Rect& rect) {
    // Corners would round the size of what only moves.
    if (rect.size.width >= 0 && rect.size.height >= 0) return rect;
    return gfx::Rect::spanning(rect.origin, {rect.maxX(), rect.maxY()});
}

}  // namespace

// Changes properties that can be animated. A view that only sets out shows what it did before, so
// its place is marked once.
template <typename Change>
void View::change(std::initializer_list<ViewProperty> properties, Change make) {
    const bool stoodStill = !_motion;
    damageExtent();
    startMotion(properties);
    make();
    settleMotion();
    if (stoodStill && _motion) return;
    forgetExtent();
    damageExtent();
}

// ---- making

View::View() = default;

std::shared_ptr<View> View::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : View {};
    const std::shared_ptr<View> view = std::make_shared<Constructible>();
    view->_isPlain = true;
    view->init(frame);
    return view;
}

void View::init(const gfx::Rect& frame) {
    setFrame(frame);
}

View::~View() {
    for (const auto& subview : _subviews)
        subview->_superview = nullptr;
    for (const auto& recognizer : _recognizers)
        recognizer->_view = nullptr;
    for (const auto& layer : ownedLayers())
        layer->setOwner(nullptr);
}

// ---- tree

void View::addSubview(std::shared_ptr<View> view) {
    insertSubview(std::move(view), _subviews.size());
}

void View::insertSubview(std::shared_ptr<View> view, std::size_t index) {
    if (!view || isDescendantOf(*view)) return;
    if (view->_superview == this) return moveSubview(*view, index);
    view->removeFromSuperview();
    // The receiver of a touch that this cancelled may have put it somewhere else.
    if (view->_superview || isDescendantOf(*view)) return;
    const std::size_t place = std::min(index, _subviews.size());
    // Held on its own: entering the window may make it leave again.
    const std::shared_ptr<View> added = std::move(view);
    _subviews.insert(_subviews.begin() + static_cast<std::ptrdiff_t>(place), added);
    added->_superview = this;
    added->inheritSides();
    added->announceLayout();
    setNeedsLayout();
    added->setWindow(_window);
    added->forgetExtent();
    added->damageExtent();
}

void View::removeFromSuperview() {
    if (!_superview) return;
    const auto alive = shared_from_this();
    if (_window) _window->cancelTouchesIn(*this);
    if (_window) _window->endFocusIn(*this);
    // The receiver of a cancelled touch, or who lost the focus, may have done it already.
    if (!_superview) return;
    damageExtent();
    View& parent = *std::exchange(_superview, nullptr);
    std::erase(parent._subviews, alive);
    parent.forgetExtent();
    parent.setNeedsLayout();
    setWindow(nullptr);
}

void View::bringSubviewToFront(View& view) {
    if (view._superview == this) moveSubview(view, _subviews.size());
}

void View::sendSubviewToBack(View& view) {
    if (view._superview == this) moveSubview(view, 0);
}

void View::moveSubview(View& view, std::size_t index) {
    const auto kept = view.shared_from_this();
    const std::vector<std::shared_ptr<View>> before = _subviews;
    std::erase(_subviews, kept);
    const std::size_t place = std::min(index, _subviews.size());
    _subviews.insert(_subviews.begin() + static_cast<std::ptrdiff_t>(place), kept);
    if (_subviews != before) view.damageExtent();
}

bool View::isDescendantOf(const View& other) const {
    for (const View* view = this; view; view = view->_superview) {
        if (view == &other) return true;
    }
    return false;
}

Window* View::window() const {
    return _window ? _window->window() : nullptr;
}

Responder* View::nextResponder() const {
    if (_superview) return _superview;
    return _window;
}

void View::setWindow(ViewWindow* window) {
    if (_window == window) return;
    std::vector<std::shared_ptr<View>> subtree;
    collect(subtree);
    for (const auto& view : subtree) {
        view->_window = window;
        window ? view->animationsChanged() : view->stopMotion();
    }
    for (const auto& view : subtree) {
        // One before it may have moved it on.
        if (view->_window == window) view->didMoveToWindow();
    }
}

void View::collect(std::vector<std::shared_ptr<View>>& subtree) {
    subtree.push_back(shared_from_this());
    for (const auto& subview : _subviews)
        subview->collect(subtree);
}

// ---- geometry

void View::setFrame(const gfx::Rect& frame) {
    const gfx::Rect next = standardized(frame);
    setPlace(_look.place.anchorIn(next), {bounds().origin, next.size});
}

void View::setBounds(const gfx::Rect& bounds) {
    setPlace(center(), standardized(bounds));
}

void View::setCenter(gfx::Point center) {
    setPlace(center, bounds());
}

void View::setPlace(gfx::Point center, const gfx::Rect& bounds) {
    if (!isFinite(center) || !isFinite(bounds)) return;
    ViewPlace& place = _look.place;
    const bool isResized = bounds.size != place.bounds.size;
    const bool isMoved = center != place.center;
    const bool isRebound = bounds != place.bounds;
    const auto set = [&] {
        place.center = center;
        place.bounds = bounds;
    };
    if (isMoved && isRebound) {
        change({ViewProperty::Center, ViewProperty::Bounds}, set);
    } else if (isMoved) {
        change({ViewProperty::Center}, set);
    } else if (isRebound) {
        change({ViewProperty::Bounds}, set);
    }
    if (!isResized) return;
    setNeedsLayout();
    const std::vector<std::shared_ptr<View>> subviews = _subviews;
    for (const auto& subview : subviews) {
        if (subview->_superview == this && subview->_fillsSuperview) subview->setFrame(bounds);
    }
}

void View::setFillsSuperview(bool fills) {
    _fillsSuperview = fills;
    if (fills && _superview) setFrame(_superview->bounds());
}

void View::setAnchorPoint(gfx::Point anchorPoint) {
    if (!isFinite(anchorPoint) || anchorPoint == _look.place.anchorPoint) return;
    change({}, [&] { _look.place.anchorPoint = anchorPoint; });
}

void View::setTransform(const gfx::AffineTransform& transform) {
    if (!isFinite(transform) || transform == _look.place.transform) return;
    change({ViewProperty::Transform}, [&] { _look.place.transform = transform; });
}

gfx::AffineTransform View::toSuperview() const {
    return placed(_look.place.toSuperview(), bounds(),
                  _superview ? _superview->bounds() : gfx::Rect());
}

gfx::AffineTransform View::toWindow() const {
    gfx::AffineTransform all = toSuperview();
    for (const View* view = _superview; view; view = view->_superview)
        all = all.concat(view->toSuperview());
    return all;
}

gfx::Point View::convertPointTo(gfx::Point p, const View* view) const {
    const gfx::Point inWindow = toWindow().apply(p);
    return view ? view->toWindow().inverted().apply(inWindow) : inWindow;
}

gfx::Point View::convertPointFrom(gfx::Point p, const View* view) const {
    const gfx::Point inWindow = view ? view->toWindow().apply(p) : p;
    return toWindow().inverted().apply(inWindow);
}

gfx::Rect View::convertRectTo(const gfx::Rect& rect, const View* view) const {
    const gfx::AffineTransform all =
        view ? toWindow().concat(view->toWindow().inverted()) : toWindow();
    return all.apply(rect);
}

// ---- languages that are written from right to left

void View::setReadsRightToLeft(bool reads) {
    if (_superview) return;
    _readsRightToLeft = reads;
    inheritSides();
}

void View::setSides(Sides sides) {
    if (_sides == sides) return;
    change([&] { _sides = sides; });
    inheritSides();
}

void View::inheritSides() {
    if (_superview) _readsRightToLeft = _superview->_readsRightToLeft;
    const bool follows = _sides ? _sides == Sides::Reading : !_superview || _superview->_isMirrored;
    const bool isMirrored = _readsRightToLeft && follows;
    if (isMirrored != _isMirrored) {
        change([&] { _isMirrored = isMirrored; });
        setNeedsLayout();
    }
    for (const auto& subview : _subviews)
        subview->inheritSides();
}

gfx::Rect View::mirrored(const gfx::Rect& rect) const {
    if (!_isMirrored) return rect;
    return {{bounds().minX() + bounds().maxX() - rect.maxX(), rect.minY()}, rect.size};
}

// Where a place in a mirrored superview is shown: what is there is moved as a whole, so that its
// middle comes to lie as far from the other side.
gfx::AffineTransform View::placed(const gfx::AffineTransform& place, const gfx::Rect& own,
                                  const gfx::Rect& around) const {
    if (!_superview || !_superview->_isMirrored || _sides == Sides::Fixed) return place;
    const double middle = place.apply(own.center()).x;
    return place.concat(
        gfx::AffineTransform::translation({around.minX() + around.maxX() - 2 * middle, 0}));
}

// ---- looks

void View::setAlpha(double alpha) {
    const double next = std::clamp(alpha, 0.0, 1.0);
    if (std::isnan(alpha) || next == _look.alpha) return;
    change({ViewProperty::Alpha}, [&] { _look.alpha = next; });
}

void View::setHidden(bool hidden) {
    if (hidden == _hidden) return;
    change([&] { _hidden = hidden; });
    if (hidden && _window) _window->endFocusIn(*this);
}

void View::setBackgroundColor(gfx::ColorRef color) {
    const auto set = [&] { _look.backgroundColor = std::move(color); };
    if (gfx::equalColors(color, _look.backgroundColor)) return set();
    if (_motion) return change({ViewProperty::BackgroundColor}, set);
    startMotion({ViewProperty::BackgroundColor});
    set();
    settleMotion();
    setNeedsDisplay();
}

void View::setClipsToBounds(bool clips) {
    if (clips != _clipsToBounds) change([&] { _clipsToBounds = clips; });
}

// ---- touches

std::shared_ptr<View> View::hitTest(gfx::Point p) {
    constexpr double leastAlpha = 0.01;
    if (_hidden || alpha() < leastAlpha || !_userInteractionEnabled || !pointInside(p)) return {};
    if (_motion && _motion->refusesTouches()) return {};
    for (auto subview = _subviews.rbegin(); subview != _subviews.rend(); ++subview) {
        const gfx::AffineTransform toHere = (*subview)->toSuperview();
        if (!toHere.isInvertible()) continue;
        if (auto hit = (*subview)->hitTest(toHere.inverted().apply(p))) return hit;
    }
    return shared_from_this();
}

bool View::pointInside(gfx::Point p) const {
    return bounds().contains(p);
}

void View::addGestureRecognizer(std::shared_ptr<ViewGesture> recognizer) {
    if (!recognizer || recognizer->_view == this) return;
    if (recognizer->_view) recognizer->_view->removeGestureRecognizer(*recognizer);
    recognizer->_view = this;
    _recognizers.push_back(std::move(recognizer));
}

void View::removeGestureRecognizer(const ViewGesture& recognizer) {
    const auto found =
        std::ranges::find(_recognizers, &recognizer, [](const auto& known) { return known.get(); });
    if (found == _recognizers.end()) return;
    const auto removed = *found;
    _recognizers.erase(found);
    removed->_view = nullptr;
    removed->didLeaveView();
}

std::vector<std::shared_ptr<GestureRecognizer>> View::gestureRecognizers() const {
    std::vector<std::shared_ptr<GestureRecognizer>> recognizers;
    for (const auto& recognizer : _recognizers)
        recognizers.push_back(recognizer->recognizer());
    return recognizers;
}

void View::takeTouches() {
    if (_window) _window->takeTouches(*this);
}

// ---- focus

bool View::becomeFirstResponder() {
    if (!_window || !canBecomeFirstResponder()) return false;
    for (const View* view = this; view; view = view->_superview) {
        if (view->_hidden) return false;
    }
    _window->setFirstResponder(shared_from_this());
    return isFirstResponder();
}

bool View::resignFirstResponder() {
    if (!isFirstResponder()) return false;
    _window->setFirstResponder(nullptr);
    return true;
}

bool View::isFirstResponder() const {
    return _window && _window->firstResponder().get() == this;
}

}  // namespace kalim::ui
