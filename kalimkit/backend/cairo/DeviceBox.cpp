#include "kalimkit/backend/cairo/DeviceBox.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/backend/cairo/CairoGeometry.h"

namespace kalim::gfx {

DeviceBox DeviceBox::around(const Rect& rect) {
    const auto limited = [](double value) {
        return static_cast<int>(std::clamp(value, -largestCoordinate, largestCoordinate));
    };
    const Point start = rect.origin;
    return {limited(std::floor(start.x)), limited(std::floor(start.y)),
            limited(std::ceil(start.x + rect.size.width)),
            limited(std::ceil(start.y + rect.size.height))};
}

DeviceBox DeviceBox::intersection(const DeviceBox& other) const {
    return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
            std::min(bottom, other.bottom)};
}

DeviceBox DeviceBox::unionWith(const DeviceBox& other) const {
    return {std::min(left, other.left), std::min(top, other.top), std::max(right, other.right),
            std::max(bottom, other.bottom)};
}

Rect DeviceBox::rect() const {
    return {static_cast<double>(left), static_cast<double>(top), static_cast<double>(width()),
            static_cast<double>(height())};
}

}  // namespace kalim::gfx
