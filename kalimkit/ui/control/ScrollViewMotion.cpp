#include <algorithm>
#include <limits>

#include "kalimkit/ui/control/ScrollView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/TimingCurve.h"

namespace kalim::ui {

namespace {

Time now() {
    return Environment::current().runLoop().now();
}

bool prefersReducedMotion() {
    return Environment::current().prefersReducedMotion();
}

}  // namespace

void ScrollView::glide(Glide glide) {
    glide.start = now();
    _glide = glide;
    _link->setPaused(false);
    // It is there already; its end is told as that of any other.
    if (prefersReducedMotion()) show(glide, std::numeric_limits<Time>::infinity());
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
    if (prefersReducedMotion()) velocity = {};
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
    const Time passed =
        prefersReducedMotion() ? std::numeric_limits<Time>::infinity() : time - glide.start;
    if (show(glide, passed) && goesOnSince(glide.start)) endGlide();
}

// What has become of the glide after so many seconds; whether it is over.
bool ScrollView::show(const Glide& glide, Time passed) {
    if (glide.kind == GlideKind::Inertia) {
        place({glide.horizontal.offsetAt(passed), glide.vertical.offsetAt(passed)});
        return passed >= std::max(glide.horizontal.duration(), glide.vertical.duration());
    }
    if (passed >= animationDuration) {
        applyScale(glide.toScale);
        if (goesOnSince(glide.start)) place(glide.toOffset);
        return true;
    }
    const double share = easeInOut(passed / animationDuration);
    applyScale(glide.fromScale + (glide.toScale - glide.fromScale) * share);
    if (!goesOnSince(glide.start)) return false;
    place(glide.fromOffset + (glide.toOffset - glide.fromOffset) * share);
    return false;
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
