#include "kalimkit/shapes/outline/StrokeSmoothing.h"

#include <algorithm>
#include <span>

#include "kalimkit/tool/QVGeometry.h"

namespace kalim {

gfx::Rect SmoothedCurve::box() const {
    return gfx::Rect::spanning(start, end).unionWith({control1, {}}).unionWith({control2, {}});
}

std::optional<SmoothedCurve> StrokeSmoothing::add(gfx::Point p) {
    _buffer[_count++] = p;
    if (_count < _buffer.size()) return std::nullopt;
    const SmoothedCurve curve{_buffer[0], _buffer[1], _buffer[2],
                              QVMidPoint(_buffer[2], _buffer[4])};
    _buffer[0] = curve.end;
    _buffer[1] = _buffer[4];
    _count = 2;
    return curve;
}

std::optional<SmoothedCurve> StrokeSmoothing::tail() const {
    if (_count == 0) return std::nullopt;
    const gfx::Point from = _buffer[0];
    const gfx::Point to = _buffer[_count - 1];
    const auto others = std::span(_buffer).first(_count);
    if (std::ranges::all_of(others, [from](gfx::Point p) { return p == from; })) {
        // Backends draw nothing for a curve without any length.
        constexpr gfx::Point speck{0.01, 0};
        return SmoothedCurve{from, from, from + speck, from + speck};
    }
    // By their number the points make a straight line, a quadratic curve written as a cubic, or a
    // cubic.
    if (_count == 2) return SmoothedCurve{from, from, to, to};
    if (_count == 4) return SmoothedCurve{from, _buffer[1], _buffer[2], to};
    const gfx::Point control = _buffer[1];
    return SmoothedCurve{from, from + (control - from) * (2.0 / 3), to + (control - to) * (2.0 / 3),
                         to};
}

}  // namespace kalim
