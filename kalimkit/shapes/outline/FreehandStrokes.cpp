#include "kalimkit/shapes/outline/FreehandStrokes.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace kalim {

namespace {

constexpr std::size_t curvesPerChunk = 64;

// Boxes without width or height may meet, too.
bool meet(const gfx::Rect& a, const gfx::Rect& b) {
    return a.minX() <= b.maxX() && b.minX() <= a.maxX() && a.minY() <= b.maxY() &&
           b.minY() <= a.maxY();
}

void include(std::optional<gfx::Rect>& box, const std::optional<SmoothedCurve>& curve) {
    if (curve) box = box ? box->unionWith(curve->box()) : curve->box();
}

void addTo(gfx::Context& context, const SmoothedCurve& curve) {
    context.moveTo(curve.start);
    context.cubicTo(curve.control1, curve.control2, curve.end);
}

}  // namespace

void FreehandStrokes::setShowsTails(bool shows) {
    if (shows == _showsTails) return;
    _showsTails = shows;
    deriveAll();
}

void FreehandStrokes::setLines(Lines lines) {
    _lines = std::move(lines);
    _touches.clear();
    deriveAll();
}

bool FreehandStrokes::setTouches(Lines touches) {
    if (touches.size() > _lines.size()) return false;
    for (std::size_t i = 0; i < touches.size(); ++i) {
        if (!touches[i].empty() && touches[i].size() != _lines[i].size()) return false;
    }
    _touches = std::move(touches);
    deriveAll();
    return true;
}

bool FreehandStrokes::hasTouches() const {
    return std::ranges::any_of(_touches, [](const auto& line) { return !line.empty(); });
}

void FreehandStrokes::beginLine() {
    endLine();
    _line = _lines.size();
    _lines.emplace_back();
}

// A pen that is silent for a while touches as it did before; what came before its first word is as
// that.
std::optional<gfx::Rect> FreehandStrokes::addPoint(gfx::Point p,
                                                   const std::optional<PenTouch>& touch) {
    if (_lines.empty()) beginLine();
    _lines.back().push_back(p);
    const bool isKnown = _touches.size() == _lines.size() && !_touches.back().empty();
    if (touch || isKnown) {
        _touches.resize(_lines.size());
        auto& touches = _touches.back();
        touches.resize(_lines.back().size(), touch ? *touch : touches.back());
    }
    if (touch && !isKnown && _lines.back().size() > 1) {
        deriveAll();
        return frame();
    }
    std::optional<gfx::Rect> changed;
    include(changed, shownTail());
    include(changed, derive(p));
    include(changed, shownTail());
    return changed;
}

void FreehandStrokes::dropLine() {
    if (_lines.empty()) return;
    _lines.pop_back();
    if (_touches.size() > _lines.size()) _touches.pop_back();
    deriveAll();
}

void FreehandStrokes::mapPoints(const std::function<gfx::Point(gfx::Point)>& mapping) {
    for (std::vector<gfx::Point>& line : _lines) {
        for (gfx::Point& point : line)
            point = mapping(point);
    }
    deriveAll();
}

void FreehandStrokes::addCurvesInSight(gfx::Context& context) const {
    const gfx::Rect clip = context.clipBounds();
    if (clip.isEmpty()) return;
    // The whole width where half would do: a clip's edge shows some of the pixels it cuts.
    const double reach = context.state().lineWidth + 1;
    const gfx::Rect sight = clip.inset(-reach, -reach);
    for (std::size_t chunk = 0; chunk < _chunkBoxes.size(); ++chunk) {
        if (!meet(_chunkBoxes[chunk], sight)) continue;
        const std::size_t first = chunk * curvesPerChunk;
        const std::size_t end = std::min(first + curvesPerChunk, _curves.size());
        for (std::size_t i = first; i < end; ++i) {
            const SmoothedCurve& curve = _curves[i];
            if (!meet(curve.box(), sight)) continue;
            addTo(context, curve);
        }
    }
    const std::optional<SmoothedCurve> tail = shownTail();
    if (tail && meet(tail->box(), sight)) addTo(context, *tail);
}

gfx::Path FreehandStrokes::curves() const {
    gfx::Path path;
    const auto add = [&path](const SmoothedCurve& curve) {
        path.moveTo(curve.start);
        path.cubicTo(curve.control1, curve.control2, curve.end);
    };
    std::ranges::for_each(_curves, add);
    if (const std::optional<SmoothedCurve> tail = shownTail()) add(*tail);
    return path;
}

gfx::Rect FreehandStrokes::frame() const {
    // The narrowing is meant.
    const float width = static_cast<float>(std::abs(_high.x - _low.x));
    const float height = static_cast<float>(std::abs(_high.y - _low.y));
    return {_low.x, _low.y, width, height};
}

std::optional<SmoothedCurve> FreehandStrokes::derive(gfx::Point p) {
    if (_pointCount++ == 0) _low = _high = p;
    _low = {std::min(_low.x, p.x), std::min(_low.y, p.y)};
    _high = {std::max(_high.x, p.x), std::max(_high.y, p.y)};
    ++_linePoints;
    const std::optional<SmoothedCurve> curve = _smoothing.add(p);
    if (!curve) return curve;
    keep(*curve, hasTouches() ? curveShares() : Shares());
    return curve;
}

void FreehandStrokes::keep(const SmoothedCurve& curve, Shares shares) {
    const gfx::Rect box = curve.box();
    if (_curves.size() % curvesPerChunk == 0) {
        _chunkBoxes.push_back(box);
    } else {
        _chunkBoxes.back() = _chunkBoxes.back().unionWith(box);
    }
    _curves.push_back(curve);
    _shares.push_back(shares);
}

// The tail of a stroke that goes on no more is one of its curves.
void FreehandStrokes::endLine() {
    if (const std::optional<SmoothedCurve> tail = shownTail())
        keep(*tail, hasTouches() ? tailShares() : Shares());
    _smoothing.restart();
    _linePoints = 0;
}

std::optional<SmoothedCurve> FreehandStrokes::shownTail() const {
    return _showsTails ? _smoothing.tail() : std::nullopt;
}

void FreehandStrokes::deriveAll() {
    _pointCount = _linePoints = 0;
    _low = _high = {};
    _curves.clear();
    _shares.clear();
    _chunkBoxes.clear();
    _smoothing.restart();
    for (std::size_t line = 0; line < _lines.size(); ++line) {
        endLine();
        _line = line;
        for (const gfx::Point point : _lines[line])
            derive(point);
    }
}

}  // namespace kalim
