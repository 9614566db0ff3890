#include "kalimkit/shapes/outline/StrokeSmoothing.h"

#include "kalimkit/canvas/model/QVGeometry.h"

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

}  // namespace kalim
