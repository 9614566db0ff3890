#include "kalimkit/gfx/Context.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/gfx/Surface.h"

namespace kalim::gfx {

namespace {

bool isFinite(Point p) {
    return std::isfinite(p.x) && std::isfinite(p.y);
}

bool isFinite(const AffineTransform& t) {
    return std::isfinite(t.a) && std::isfinite(t.b) && std::isfinite(t.c) && std::isfinite(t.d) &&
           std::isfinite(t.tx) && std::isfinite(t.ty);
}

bool isFinite(const Path& path) {
    for (const Point& p : path.points()) {
        if (!std::isfinite(p.x) || !std::isfinite(p.y)) return false;
    }
    return true;
}

// Further than anything is drawn, and small enough to calculate with.
Rect unlimited() {
    return {-1e9, -1e9, 2e9, 2e9};
}

Path rectPath(const Rect& rect) {
    Path path;
    path.addRect(rect);
    return path;
}

// Of every corner: a bounding box could hide one.
bool isFinite(const Rect& rect, const AffineTransform& transform) {
    const double right = rect.origin.x + rect.size.width;
    const double bottom = rect.origin.y + rect.size.height;
    return isFinite(transform.apply(rect.origin)) && isFinite(transform.apply({right, bottom})) &&
           isFinite(transform.apply({right, rect.origin.y})) &&
           isFinite(transform.apply({rect.origin.x, bottom}));
}

Path ellipsePath(const Rect& rect) {
    Path path;
    path.addEllipse(rect);
    return path;
}

}  // namespace

Context::~Context() = default;

// ---- state ----------------------------------------------------------------------------------

void Context::save() {
    _saved.push_back(_state);
    onSave();
}

void Context::restore() {
    // A group owns the states below it until it ends.
    const std::size_t floor = _groupDepths.empty() ? 0 : _groupDepths.back();
    if (_saved.size() <= floor) return;
    _state = std::move(_saved.back());
    _saved.pop_back();
    onRestore();
}

void Context::setLineWidth(double width) {
    if (std::isfinite(width) && width >= 0) _state.lineWidth = width;
}

void Context::setFillColor(const Color& color) {
    _state.fillColor = color;
    _state.fillPattern.reset();
}

void Context::setFillPattern(const Pattern& pattern) {
    const AffineTransform carried = pattern.transform.concat(_state.transform);
    if (!pattern.image || !isFinite(carried) || !carried.isInvertible()) return;
    _state.fillPattern = {pattern.image, carried, pattern.interpolation};
}

void Context::setShadow(const Shadow& shadow) {
    if (!isFinite(shadow.offset) || !std::isfinite(shadow.blur)) return;
    _state.shadow = {_state.shadowTurn.apply(shadow.offset), std::max(shadow.blur, 0.0),
                     shadow.color};
}

void Context::setAlpha(double alpha) {
    if (!std::isnan(alpha)) _state.alpha = std::clamp(alpha, 0.0, 1.0);
}

// ---- transform ------------------------------------------------------------------------------

void Context::concat(const AffineTransform& transform) {
    const AffineTransform next = transform.concat(_state.transform);
    if (isFinite(next)) _state.transform = next;
}

// ---- path -----------------------------------------------------------------------------------

void Context::moveTo(Point p) {
    const Point at = _state.transform.apply(p);
    if (isFinite(at)) _path.moveTo(at);
}

void Context::lineTo(Point p) {
    const Point at = _state.transform.apply(p);
    if (isFinite(at)) _path.lineTo(at);
}

void Context::quadTo(Point control, Point end) {
    const Point c = _state.transform.apply(control);
    const Point e = _state.transform.apply(end);
    if (isFinite(c) && isFinite(e)) _path.quadTo(c, e);
}

void Context::cubicTo(Point control1, Point control2, Point end) {
    const Point c1 = _state.transform.apply(control1);
    const Point c2 = _state.transform.apply(control2);
    const Point e = _state.transform.apply(end);
    if (isFinite(c1) && isFinite(c2) && isFinite(e)) _path.cubicTo(c1, c2, e);
}

void Context::addRect(const Rect& rect) {
    addPath(rectPath(rect));
}

void Context::addEllipse(const Rect& rect) {
    addPath(ellipsePath(rect));
}

void Context::addArc(Point center, double radius, double startAngle, double endAngle,
                     bool clockwise) {
    if (!isFinite(center) || !std::isfinite(radius) || !std::isfinite(startAngle) ||
        !std::isfinite(endAngle)) {
        return;
    }
    Path arc;
    arc.addArc(center, radius, startAngle, endAngle, clockwise);
    arc = arc.transformed(_state.transform);
    if (!isFinite(arc)) return;
    // The arc is its start followed by cubics only; its start continues what is there.
    const std::vector<Point>& points = arc.points();
    _path.lineTo(points[0]);
    for (std::size_t i = 1; i + 2 < points.size(); i += 3) {
        _path.cubicTo(points[i], points[i + 1], points[i + 2]);
    }
}

void Context::addPath(const Path& path) {
    const Path carried = path.transformed(_state.transform);
    if (isFinite(carried)) _path.addPath(carried);
}

// ---- painting -------------------------------------------------------------------------------

void Context::fill() {
    const Path path = takePath();
    if (!path.isEmpty()) onFill(path);
}

void Context::stroke() {
    const Path path = takePath();
    if (path.isEmpty() || _state.lineWidth == 0 || !_state.transform.isInvertible()) return;
    onStroke(path);
}

void Context::clip() {
    const Path path = takePath();
    const Rect box = path.boundingBox();
    _state.clipBounds = _state.clipBounds ? _state.clipBounds->intersection(box) : box;
    onClip(path);
}

void Context::fillRect(const Rect& rect) {
    beginPath();
    addRect(rect);
    fill();
}

void Context::strokeRect(const Rect& rect) {
    beginPath();
    addRect(rect);
    stroke();
}

void Context::fillEllipse(const Rect& rect) {
    beginPath();
    addEllipse(rect);
    fill();
}

void Context::strokeEllipse(const Rect& rect) {
    beginPath();
    addEllipse(rect);
    stroke();
}

void Context::clipToRect(const Rect& rect) {
    if (!isFinite(rect, _state.transform)) return;
    beginPath();
    addRect(rect);
    clip();
}

Rect Context::clipBounds() const {
    if (!_state.transform.isInvertible()) return {};
    if (!_state.clipBounds) return unlimited();
    if (_state.clipBounds->isEmpty()) return {};
    const AffineTransform toUser = _state.transform.inverted();
    return isFinite(*_state.clipBounds, toUser) ? toUser.apply(*_state.clipBounds) : unlimited();
}

// ---- images ---------------------------------------------------------------------------------

void Context::drawImage(const Image& image, const Rect& rect) {
    const Size seen = rect.size;
    const Size stored = exchangesSides(image.orientation()) ? Size{seen.height, seen.width} : seen;
    const AffineTransform upright = uprightTransform(image.orientation(), seen);
    if (upright.isIdentity()) return drawRaster(image, rect);
    const AffineTransform kept = _state.transform;
    concat(upright.concat(AffineTransform::translation(rect.origin)));
    drawRaster(image, {Point{}, stored});
    _state.transform = kept;
}

void Context::drawRaster(const Image& image, const Rect& rect) {
    if (!isFinite(rect, _state.transform) || rect.isEmpty()) return;
    if (_state.transform.isInvertible()) onDrawRaster(image, rect);
}

void Context::drawSurface(Surface& surface, const Rect& rect) {
    if (&surface.context() == this || !isFinite(rect, _state.transform) || rect.isEmpty()) return;
    if (_state.transform.isInvertible()) onDrawSurface(surface, rect);
}

void Context::onDrawSurface(Surface& surface, const Rect& rect) {
    if (const ImageRef image = surface.makeImage()) onDrawRaster(*image, rect);
}

// ---- text -----------------------------------------------------------------------------------

void Context::drawText(std::string_view text, Point baseline, const Font& font) {
    if (text.empty() || !isFinite(_state.transform.apply(baseline))) return;
    if (!std::isfinite(font.size) || font.size <= 0 || !_state.transform.isInvertible()) return;
    if (_state.textMode == TextMode::Stroke && _state.lineWidth == 0) return;
    onDrawText(text, baseline, font);
}

// ---- groups ---------------------------------------------------------------------------------

void Context::beginTransparencyGroup() {
    save();
    onBeginGroup();
    _groupDepths.push_back(_saved.size());
    _state.alpha = 1;
    _state.shadow.reset();
    _state.blendMode = BlendMode::Normal;
}

void Context::endTransparencyGroup() {
    if (_groupDepths.empty()) return;
    while (_saved.size() > _groupDepths.back())
        restore();
    _groupDepths.pop_back();
    _state = _saved.back();
    onEndGroup();
    restore();
}

Path Context::takePath() {
    return std::exchange(_path, {});
}

}  // namespace kalim::gfx
