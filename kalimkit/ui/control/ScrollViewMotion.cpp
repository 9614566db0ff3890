#include <algorithm>

#include "kalimkit/ui/control/ScrollView.h"
#include "kalimkit/ui/loop/Environment.h"
#include "kalimkit/ui/motion/TimingCurve.h"

namespace kalim::ui {

namespace {

Time now() {
    return Environment::current().runLoop().now();
}

}  // namespace

void ScrollView::glide(Glide glide) {
    _glide = glide;
    _glide->start = now();
    _link->setPaused(false);
}

void ScrollView::glideTo(GlideKind kind, gfx::Point offset, double scale) {
    Glide next;
    next.kind = kind;
    next.fromOffset = contentOffset();
    next.toOffset = offset;
    next.fromScale = _zoomScale;
    next.toScale = scale;
    glide(next);
}

// False where the content stays where it is.
bool ScrollView::startInertia(gfx::Point velocity) {
    Glide next;
    const gfx::Point offset = contentOffset();
    next.horizontal = {offset.x, movesHorizontally() ? velocity.x : 0, horizontalRange(), _bounces};
    next.vertical = {offset.y, movesVertically() ? velocity.y : 0, verticalRange(), _bounces};
    if (next.horizontal.duration() <= 0 && next.vertical.duration() <= 0) {
        place({next.horizontal.offsetAt(0), next.vertical.offsetAt(0)});
        return false;
    }
    glide(next);
    return true;
}

// The content under the fingers stays where it was, as far as the edges let it.
void ScrollView::bounceZoom() {
    const double scale = clampedScale(_zoomScale);
    const double factor = scale / _zoomScale;
    const gfx::Point offset = (contentOffset() + _focus) * factor - _focus;
    glideTo(GlideKind::ZoomBounce, clamped(offset, contentSize() * factor), scale);
}

void ScrollView::tick(Time time) {
    if (!_glide) return;
    const auto alive = shared_from_this();
    // The delegate may start another.
    const Glide glide = *_glide;
    const double passed = time - glide.start;
    if (glide.kind == GlideKind::Inertia) {
        const double duration = std::max(glide.horizontal.duration(), glide.vertical.duration());
        place({glide.horizontal.offsetAt(passed), glide.vertical.offsetAt(passed)});
        if (passed >= duration && goesOnSince(glide.start)) endGlide();
        return;
    }
    const double share = easeInOut(passed / animationDuration);
    const bool isOver = passed >= animationDuration;
    const gfx::Point way = (glide.toOffset - glide.fromOffset) * share;
    applyScale(isOver ? glide.toScale
                      : glide.fromScale + (glide.toScale - glide.fromScale) * share);
    if (!goesOnSince(glide.start)) return;
    place(isOver ? glide.toOffset : glide.fromOffset + way);
    if (isOver && goesOnSince(glide.start)) endGlide();
}

void ScrollView::stopMoving() {
    if (_glide) endGlide();
}

void ScrollView::endGlide() {
    const GlideKind kind = _glide->kind;
    _glide.reset();
    _link->setPaused(true);
    tell([&](ScrollViewDelegate& delegate) {
        switch (kind) {
            case GlideKind::Inertia:
                return delegate.scrollViewDidEndDecelerating(*this);
            case GlideKind::ZoomBounce:
                return delegate.scrollViewDidEndZooming(*this, _zoomScale);
            case GlideKind::Animation:
                return delegate.scrollViewDidEndScrollingAnimation(*this);
        }
    });
}

}  // namespace kalim::ui
