#include "kalimkit/gfx/ExtentContext.h"

#include <cmath>
#include <numeric>
#include <utility>

namespace kalim::gfx {

namespace {

// Corners further out than this many pen radii are cut off by the backends.
constexpr double miterLimit = 10;
// Of the font's size: how far glyphs may reach beyond their line's box.
constexpr double glyphOverhang = 0.5;
// The shadow's edge, in standard deviations, and what rounding to pixels may add, points.
constexpr double shadowDeviations = 4;
constexpr double shadowRounding = 2;

}  // namespace

void ExtentContext::onFill(const Path& path) {
    paint(path.pointBounds());
}

void ExtentContext::onStroke(const Path& path) {
    const double reach = penReach();
    paint(path.pointBounds().inset(-reach, -reach));
}

void ExtentContext::onDrawRaster(const Image&, const Rect& rect) {
    paint(transform().apply(rect));
}

void ExtentContext::onDrawSurface(Surface&, const Rect& rect) {
    paint(transform().apply(rect));
}

void ExtentContext::onDrawText(std::string_view text, Point baseline, const Font& font) {
    const std::vector<double> advances = _device.advances(text, font);
    const double width = std::accumulate(advances.begin(), advances.end(), 0.0);
    const LineMetrics metrics = _device.lineMetrics(font);
    const Rect line(baseline.x, baseline.y - metrics.ascent, width,
                    metrics.ascent + metrics.descent);
    const double overhang = font.size * glyphOverhang;
    const double reach = state().textMode == TextMode::Stroke ? penReach() : 0;
    paint(transform().apply(line.inset(-overhang, -overhang)).inset(-reach, -reach));
}

void ExtentContext::onBeginGroup() {
    _outside.push_back(std::exchange(_extent, {}));
}

void ExtentContext::onEndGroup() {
    const Rect inside = std::exchange(_extent, _outside.back());
    _outside.pop_back();
    if (!inside.isEmpty()) paint(inside);
}

void ExtentContext::paint(const Rect& bounds) {
    include(bounds);
    if (_shadows == Shadows::LeftOut || !state().castsShadow()) return;
    const double reach = state().shadow->blur / 2 * shadowDeviations + shadowRounding;
    include(bounds.offset(state().shadow->offset).inset(-reach, -reach));
}

void ExtentContext::include(const Rect& bounds) {
    if (bounds.isEmpty()) return;
    _extent = _extent.isEmpty() ? bounds : _extent.unionWith(bounds);
}

double ExtentContext::penReach() const {
    double corner = state().lineCap == LineCap::Square ? std::sqrt(2.0) : 1;
    if (state().lineJoin == LineJoin::Miter) corner = miterLimit;
    return state().lineWidth / 2 * state().transform.largestStretch() * corner;
}

}  // namespace kalim::gfx
