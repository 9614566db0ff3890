#include <utility>

#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/ui/motion/ShapeLayer.h"
#include "kalimkit/ui/view/View.h"
#include "kalimkit/ui/view/ViewDecoration.h"
#include "kalimkit/ui/view/ViewWindow.h"

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

// How far a shadow's edge reaches, in standard deviations of its blur, and what rounding to pixels
// may add, points.
constexpr double shadowDeviations = 4;
constexpr double shadowRounding = 2;

}  // namespace

// ---- marking

void View::setNeedsDisplay() {
    damage(shown().place.bounds);
}

void View::setNeedsDisplay(const gfx::Rect& rect) {
    damage(drawnToShown().apply(rect.intersection(bounds())));
}

// All that the view shows, its shadow and what its subviews show outside the bounds included; own
// coordinates.
gfx::Rect View::extent() const {
    return withShadow(contentExtent());
}

gfx::Rect View::contentExtent() const {
    if (_contentExtent) return *_contentExtent;
    gfx::Rect all = shown().place.bounds;
    if (_clipsToBounds) return *(_contentExtent = all);
    bool isLasting = true;
    const auto include = [&all](const gfx::Rect& place) {
        if (!place.isEmpty()) all = all.isEmpty() ? place : all.unionWith(place);
    };
    for (const auto& layer : shapeLayers())
        include(layer->extent());
    for (const auto& subview : _subviews) {
        if (!subview->isShown()) continue;
        include(subview->shownToSuperview().apply(subview->extent()));
        isLasting = isLasting && subview->_contentExtent && !subview->shadow();
    }
    if (isLasting) _contentExtent = all;
    return all;
}

// What this view shows has another extent from now on, or counts otherwise in those above it. Where
// one of these has forgotten its own, so have all above that which it matters to.
void View::forgetExtent() {
    _contentExtent.reset();
    for (View* view = _superview; view && view->_contentExtent; view = view->_superview)
        view->_contentExtent.reset();
}

void View::damageExtent() {
    if (_window && isShown()) damage(contentExtent());
}

// The rectangle with the shadow of what is in it. Shadows are measured in the window's points.
gfx::Rect View::withShadow(const gfx::Rect& rect) const {
    if (!_decoration || !_decoration->shadow || rect.isEmpty()) return rect;
    gfx::AffineTransform toOwn = shownToWindow().inverted();
    toOwn.tx = toOwn.ty = 0;
    const double edge = _decoration->shadow->blur / 2 * shadowDeviations + shadowRounding;
    const double reach = edge * toOwn.largestStretch();
    const gfx::Point offset = toOwn.apply(_decoration->shadow->offset);
    return rect.unionWith(rect.offset(offset).inset(-reach, -reach));
}

// Where what casts a shadow on the rectangle may be.
gfx::Rect View::withCasters(const gfx::Rect& rect) const {
    const gfx::Point middle = rect.center();
    const gfx::Rect shadowed = withShadow(rect);
    // Seen from the shadow, its caster lies on the other side.
    return rect.unionWith(
        {middle * 2 - gfx::Point{shadowed.maxX(), shadowed.maxY()}, shadowed.size});
}

// Tells the window about the part of the rectangle that shows.
void View::damage(gfx::Rect rect) {
    if (!_window) return;
    const View* view = this;
    while (true) {
        if (!view->isShown()) return;
        const ViewPlace& place = view->shown().place;
        if (view->_clipsToBounds) rect = rect.intersection(place.bounds);
        if (rect.isEmpty()) return;
        if (view->_decoration) rect = view->withShadow(rect);
        rect = view->shownToSuperview().apply(rect);
        if (!view->_superview) break;
        view = view->_superview;
    }
    _window->addDamage(rect);
}

// ---- layout

void View::setNeedsLayout() {
    _needsLayout = true;
    announceLayout();
    if (_window) _window->requestLayout();
}

// Where one above knows that something below is to be laid out, all above it do.
void View::announceLayout() {
    for (View* view = _superview; view && !view->_needsLayoutBelow; view = view->_superview)
        view->_needsLayoutBelow = true;
}

void View::layoutIfNeeded() {
    if (_needsLayout) {
        _needsLayout = false;
        layoutSubviews();
    }
    if (!std::exchange(_needsLayoutBelow, false)) return;
    // A copy: laying out may add and remove.
    const std::vector<std::shared_ptr<View>> subviews = _subviews;
    for (const auto& subview : subviews)
        subview->layoutIfNeeded();
}

// ---- painting. Each returns how many views drew; `dirty` is in the context's coordinates.

void View::drawRect(gfx::Context& /*context*/, const gfx::Rect& /*dirty*/) {}

// `dirty` is in superview coordinates.
int View::paint(gfx::Context& context, const gfx::Rect& dirty) {
    const gfx::AffineTransform toHere = shownToSuperview();
    if (!isShown() || !toHere.isInvertible()) return 0;
    const gfx::Rect own = toHere.inverted().apply(dirty);
    if (!extent().intersects(own)) return 0;
    const gfx::GraphicsStateGuard guard(context);
    context.concat(toHere);
    const auto shadow = this->shadow();
    if (shownAlpha() == 1 && !shadow) return paintContent(context, own);
    context.setAlpha(shownAlpha());
    if (shadow) context.setShadow(*shadow);
    // A background alone is one fill, which takes the alpha and casts the shadow by itself.
    if (isBackgroundAlone()) return paintBackground(context);
    const TransparencyGroup group(context);
    return paintContent(context, shadow ? withCasters(own) : own);
}

bool View::isBackgroundAlone() const {
    return _isPlain && _subviews.empty() && shapeLayers().empty() && !mask();
}

void View::renderIn(gfx::Context& context) {
    layoutIfNeeded();
    const gfx::GraphicsStateGuard guard(context);
    const gfx::Rect& shownBounds = shown().place.bounds;
    context.translate(-shownBounds.minX(), -shownBounds.minY());
    paintContent(context, shownBounds);
}

int View::paintContent(gfx::Context& context, const gfx::Rect& dirty) {
    const gfx::Rect visible = clipContent(context, dirty);
    int drawn = paintOwn(context, visible);
    for (const auto& layer : shapeLayers()) {
        if (layer->extent().intersects(visible)) layer->draw(context);
    }
    // A copy: drawing is not to change the tree, but it must not crash if it does.
    const std::vector<std::shared_ptr<View>> subviews = _subviews;
    for (const auto& subview : subviews)
        drawn += subview->paint(context, visible);
    return drawn;
}

// The part of the dirty rectangle that is left.
gfx::Rect View::clipContent(gfx::Context& context, const gfx::Rect& dirty) {
    if (const auto cut = mask()) {
        context.beginPath();
        context.addPath(cut->shownOutline());
        context.clip();
    }
    const gfx::Rect& shownBounds = shown().place.bounds;
    const bool isRound = cornerRadius() > 0;
    if (!_clipsToBounds || (!isRound && shownBounds.contains(dirty))) return dirty;
    if (isRound) {
        context.beginPath();
        context.addPath(gfx::roundedRect(shownBounds, cornerRadius()));
        context.clip();
    } else {
        context.clipToRect(shownBounds);
    }
    return dirty.intersection(shownBounds);
}

int View::paintOwn(gfx::Context& context, const gfx::Rect& dirty) {
    const gfx::Rect& shownBounds = shown().place.bounds;
    const gfx::Rect visible = dirty.intersection(shownBounds);
    if (visible.isEmpty() || (_isPlain && !shown().backgroundColor)) return 0;
    const gfx::GraphicsStateGuard guard(context);
    paintBackground(context);
    if (_isPlain) return 1;
    if (!shownBounds.contains(dirty)) context.clipToRect(shownBounds);
    const gfx::AffineTransform toShown = drawnToShown();
    if (toShown.isIdentity()) {
        drawRect(context, visible);
    } else if (toShown.isInvertible()) {
        context.concat(toShown);
        drawRect(context, toShown.inverted().apply(visible));
    }
    return 1;
}

int View::paintBackground(gfx::Context& context) {
    const gfx::ColorRef& color = shown().backgroundColor;
    if (!color) return 0;
    context.setFillColor(*color);
    if (cornerRadius() == 0) {
        context.fillRect(shown().place.bounds);
    } else {
        context.beginPath();
        context.addPath(gfx::roundedRect(shown().place.bounds, cornerRadius()));
        context.fill();
    }
    return 1;
}

// The view draws itself in its final size; until that is reached, the drawing is stretched.
gfx::AffineTransform View::drawnToShown() const {
    const gfx::Rect& to = shown().place.bounds;
    if (to == bounds() || bounds().isEmpty()) return {};
    return gfx::AffineTransform::translation(-bounds().origin)
        .concat(gfx::AffineTransform::scaling(to.size.width / bounds().size.width,
                                              to.size.height / bounds().size.height))
        .concat(gfx::AffineTransform::translation(to.origin));
}

}  // namespace kalim::ui
