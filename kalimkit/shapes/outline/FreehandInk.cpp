#include <algorithm>

#include "kalimkit/shapes/outline/FreehandStrokes.h"

// Strokes that are as wide as the pen was pressed.

namespace kalim {

namespace {

// That the first curve of a stroke takes.
constexpr std::size_t curvePoints = 5;

}  // namespace

void FreehandStrokes::addInkInSight(gfx::Context& context) const {
    const double width = context.state().lineWidth;
    const gfx::Rect sight = context.clipBounds().inset(-width - 1, -width - 1);
    gfx::Path ink;
    const auto add = [&](const SmoothedCurve& curve, Shares shares) {
        const gfx::Rect box = curve.box();
        const bool isInSight = box.minX() <= sight.maxX() && sight.minX() <= box.maxX() &&
                               box.minY() <= sight.maxY() && sight.minY() <= box.maxY();
        if (isInSight) addInk(ink, curve, shares.start * width, shares.end * width);
    };
    for (std::size_t i = 0; i < _curves.size(); ++i)
        add(_curves[i], _shares[i]);
    if (const std::optional<SmoothedCurve> tail = shownTail()) add(*tail, tailShares());
    context.addPath(ink);
}

double FreehandStrokes::lastShare() const {
    return tailShares().end;
}

// The curve that the last point has completed ends between the last point but two and the last.
FreehandStrokes::Shares FreehandStrokes::curveShares() {
    const Shares shares{_linePoints == curvePoints ? shareAt(0, 2) : _lastShare,
                        shareAt(_linePoints - 4, _linePoints)};
    _lastShare = shares.end;
    return shares;
}

// The mean of some points of the line that is derived, so that a pen's tremor does not show.
double FreehandStrokes::shareAt(std::size_t first, std::size_t end) const {
    if (_line >= _touches.size() || _touches[_line].empty() || first >= end) return 1;
    const auto& touches = _touches[_line];
    double sum = 0;
    for (std::size_t i = first; i < end; ++i)
        sum += inkShare(touches[std::min(i, touches.size() - 1)]);
    return sum / static_cast<double>(end - first);
}

FreehandStrokes::Shares FreehandStrokes::tailShares() const {
    const double start =
        _linePoints < curvePoints ? shareAt(0, std::min<std::size_t>(_linePoints, 2)) : _lastShare;
    return {start, shareAt(_linePoints - std::min<std::size_t>(_linePoints, 3), _linePoints)};
}

}  // namespace kalim
