#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/ui/view/View.h"
#include "kalimkit/ui/view/Window.h"

namespace kalim::ui {

namespace {

// Composes what is drawn in its scope by itself.
class TransparencyGroup {
public:
    explicit TransparencyGroup(gfx::Context& context) : _context(context) {
        _context.beginTransparencyGroup();
    }
    ~TransparencyGroup() { _context.endTransparencyGroup(); }
    TransparencyGroup(const TransparencyGroup&) = delete;
    TransparencyGroup& operator=(const TransparencyGroup&) = delete;

private:
    gfx::Context& _context;
};

}  // namespace

// ---- marking

void View::setNeedsDisplay() {
    damage(_bounds);
}

void View::setNeedsDisplay(const gfx::Rect& rect) {
    damage(rect.intersection(_bounds));
}

// All that the view shows, what its subviews show outside the bounds included; own coordinates.
gfx::Rect View::extent() const {
    gfx::Rect all = _bounds;
    if (_clipsToBounds) return all;
    for (const auto& subview : _subviews) {
        if (!subview->isShown()) continue;
        const gfx::Rect place = subview->toSuperview().apply(subview->extent());
        if (!place.isEmpty()) all = all.isEmpty() ? place : all.unionWith(place);
    }
    return all;
}

// Tells the window about the part of the rectangle that shows.
void View::damage(gfx::Rect rect) {
    if (!_window) return;
    const View* view = this;
    while (true) {
        if (!view->isShown()) return;
        if (view->_clipsToBounds) rect = rect.intersection(view->_bounds);
        if (rect.isEmpty()) return;
        rect = view->toSuperview().apply(rect);
        if (!view->_superview) break;
        view = view->_superview;
    }
    _window->addDamage(rect);
}

// ---- layout

void View::setNeedsLayout() {
    _needsLayout = true;
    if (_window) _window->requestLayout();
}

void View::layoutIfNeeded() {
    if (_needsLayout) {
        _needsLayout = false;
        layoutSubviews();
    }
    // A copy: laying out may add and remove.
    const std::vector<std::shared_ptr<View>> subviews = _subviews;
    for (const auto& subview : subviews)
        subview->layoutIfNeeded();
}

// ---- painting. Each returns how many views drew; `dirty` is in the context's coordinates.

void View::drawRect(gfx::Context& /*context*/, const gfx::Rect& /*dirty*/) {}

// In superview coordinates.
int View::paint(gfx::Context& context, const gfx::Rect& dirty) {
    const gfx::AffineTransform toHere = toSuperview();
    if (!isShown() || !toHere.isInvertible()) return 0;
    const gfx::Rect own = toHere.inverted().apply(dirty);
    if (!extent().intersects(own)) return 0;
    const gfx::GraphicsStateGuard guard(context);
    context.concat(toHere);
    if (_alpha == 1) return paintContent(context, own);
    context.setAlpha(_alpha);
    // A background alone is one fill, which takes the alpha by itself.
    if (_isPlain && _subviews.empty()) return paintContent(context, own);
    const TransparencyGroup group(context);
    return paintContent(context, own);
}

void View::renderIn(gfx::Context& context) {
    layoutIfNeeded();
    const gfx::GraphicsStateGuard guard(context);
    context.translate(-_bounds.minX(), -_bounds.minY());
    paintContent(context, _bounds);
}

int View::paintContent(gfx::Context& context, const gfx::Rect& dirty) {
    const bool isCut = _clipsToBounds && !_bounds.contains(dirty);
    if (isCut) context.clipToRect(_bounds);
    const gfx::Rect visible = isCut ? dirty.intersection(_bounds) : dirty;
    int drawn = paintOwn(context, visible);
    // A copy: drawing is not to change the tree, but it must not crash if it does.
    const std::vector<std::shared_ptr<View>> subviews = _subviews;
    for (const auto& subview : subviews)
        drawn += subview->paint(context, visible);
    return drawn;
}

int View::paintOwn(gfx::Context& context, const gfx::Rect& dirty) {
    const gfx::Rect visible = dirty.intersection(_bounds);
    if (visible.isEmpty() || (_isPlain && !_backgroundColor)) return 0;
    const gfx::GraphicsStateGuard guard(context);
    if (_backgroundColor) {
        context.setFillColor(*_backgroundColor);
        context.fillRect(_bounds);
    }
    if (_isPlain) return 1;
    if (!_bounds.contains(dirty)) context.clipToRect(_bounds);
    drawRect(context, visible);
    return 1;
}

}  // namespace kalim::ui
