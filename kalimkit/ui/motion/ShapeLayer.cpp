#include "kalimkit/ui/motion/ShapeLayer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/gfx/PathTrim.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/LayerOwner.h"

namespace kalim::ui {

namespace {

// Corners further out than this many pen radii are cut off by the backends.
constexpr double miterLimit = 10;

Time now() {
    return Environment::hasCurrent() ? Environment::current().runLoop().now() : 0;
}

}  // namespace

// Makes a change that shows, with the damage before and after it.
template <typename Change>
void ShapeLayer::change(Change make) {
    damage();
    make();
    damage();
}

// ---- animations

void ShapeLayer::addAnimation(const LayerAnimation& animation, std::string key) {
    _animations.add(animation, std::move(key), now());
    if (Environment::hasCurrent() && Environment::current().prefersReducedMotion()) {
        _animations.jumpToEnd();
    }
    animationsChanged();
}

void ShapeLayer::removeAnimation(const std::string& key) {
    if (_animations.remove(key)) animationsChanged();
}

void ShapeLayer::removeAllAnimations() {
    _animations.clear();
    animationsChanged();
}

std::vector<std::string> ShapeLayer::animationKeys() const {
    return _animations.runningKeys(now());
}

bool ShapeLayer::isAnimating() const {
    return _animations.isRunning(now());
}

void ShapeLayer::animationsChanged() {
    advance(now());
    if (_owner) _owner->layerAnimationsChanged();
}

bool ShapeLayer::advance(Time time) {
    _animations.dropOver(time);
    LayerValues next = _animations.valuesAt(time);
    if (next != _values) change([&] { _values = next; });
    return _animations.isRunning(time);
}

void ShapeLayer::leaveScreen() {
    _animations.jumpToEnd();
    advance(now());
}

// ---- drawing

// The layer turns about its frame's centre.
gfx::AffineTransform ShapeLayer::toOwner() const {
    const gfx::AffineTransform place = gfx::AffineTransform::translation(_frame.origin);
    if (_values.scale == 1 && _values.rotation == 0) return place;
    const gfx::Point middle = _frame.center();
    return place.concat(gfx::AffineTransform::translation(-middle))
        .concat(gfx::AffineTransform::scaling(_values.scale, _values.scale))
        .concat(gfx::AffineTransform::rotation(_values.rotation))
        .concat(gfx::AffineTransform::translation(middle));
}

bool ShapeLayer::isStroked() const {
    return (_strokeColor || _values.strokeColor) && shownLineWidth() > 0 && !_path.isEmpty();
}

gfx::Path ShapeLayer::strokedPath() const {
    const double start = _values.strokeStart.value_or(_strokeStart);
    const double end = _values.strokeEnd.value_or(_strokeEnd);
    return start <= 0 && end >= 1 ? _path : gfx::trimPath(_path, start, end);
}

void ShapeLayer::draw(gfx::Context& context) const {
    const double opacity = _opacity * _values.opacity;
    const gfx::AffineTransform toHere = toOwner();
    if (_hidden || opacity <= 0 || !toHere.isInvertible()) return;
    const gfx::GraphicsStateGuard guard(context);
    context.concat(toHere);
    context.setAlpha(context.state().alpha * opacity);
    // What the two cover together is not to show through.
    const bool isGroup = opacity < 1 && isFilled() && isStroked();
    if (isGroup) context.beginTransparencyGroup();
    if (isFilled()) {
        context.setFillColor(*_fillColor);
        context.beginPath();
        context.addPath(_path);
        context.fill();
    }
    if (isStroked()) {
        context.setStrokeColor(_values.strokeColor ? *_values.strokeColor : *_strokeColor);
        context.setLineWidth(shownLineWidth());
        context.setLineCap(_lineCap);
        context.setLineJoin(_lineJoin);
        context.beginPath();
        context.addPath(strokedPath());
        context.stroke();
    }
    if (isGroup) context.endTransparencyGroup();
}

gfx::Path ShapeLayer::shownOutline() const {
    return _path.transformed(toOwner());
}

gfx::Rect ShapeLayer::extent() const {
    if (_hidden || _opacity * _values.opacity <= 0) return {};
    if (!isFilled() && !isStroked()) return {};
    double reach = 0;
    if (isStroked()) {
        double corner = _lineCap == gfx::LineCap::Square ? std::sqrt(2.0) : 1;
        if (_lineJoin == gfx::LineJoin::Miter) corner = miterLimit;
        reach = shownLineWidth() / 2 * corner;
    }
    return toOwner().apply(_path.pointBounds().inset(-reach, -reach));
}

void ShapeLayer::damage() const {
    if (_owner) _owner->layerDamaged(*this);
}

// ---- shape

void ShapeLayer::setPath(gfx::Path path) {
    if (!(path == _path)) change([&] { _path = std::move(path); });
}

void ShapeLayer::setFrame(const gfx::Rect& frame) {
    const bool isFinite = std::isfinite(frame.minX()) && std::isfinite(frame.minY()) &&
                          std::isfinite(frame.maxX()) && std::isfinite(frame.maxY());
    if (isFinite && frame != _frame) change([&] { _frame = frame; });
}

void ShapeLayer::setHidden(bool hidden) {
    if (hidden != _hidden) change([&] { _hidden = hidden; });
}

// ---- paint

void ShapeLayer::setFillColor(gfx::ColorRef color) {
    change([&] { _fillColor = std::move(color); });
}

void ShapeLayer::setStrokeColor(gfx::ColorRef color) {
    change([&] { _strokeColor = std::move(color); });
}

void ShapeLayer::setOpacity(double opacity) {
    if (!std::isnan(opacity)) change([&] { _opacity = std::clamp(opacity, 0.0, 1.0); });
}

// ---- stroke

void ShapeLayer::setLineWidth(double width) {
    if (std::isfinite(width)) change([&] { _lineWidth = std::max(width, 0.0); });
}

void ShapeLayer::setLineCap(gfx::LineCap cap) {
    change([&] { _lineCap = cap; });
}

void ShapeLayer::setLineJoin(gfx::LineJoin join) {
    change([&] { _lineJoin = join; });
}

void ShapeLayer::setStrokeStart(double share) {
    if (!std::isnan(share)) change([&] { _strokeStart = std::clamp(share, 0.0, 1.0); });
}

void ShapeLayer::setStrokeEnd(double share) {
    if (!std::isnan(share)) change([&] { _strokeEnd = std::clamp(share, 0.0, 1.0); });
}

}  // namespace kalim::ui
