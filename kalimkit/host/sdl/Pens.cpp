#include "kalimkit/host/sdl/Pens.h"

#include <algorithm>

namespace kalim {

namespace {

// Tablets tell degrees, or parts of as much as this.
constexpr double mostTilt = 64;
constexpr double quarterTurn = 90;

double degreesOf(const PenAxis& axis, double value) {
    const double reach = std::max(-axis.least, axis.most);
    if (reach <= 0) return 0;
    const double degrees = reach <= quarterTurn ? value : value / reach * mostTilt;
    return std::clamp(degrees, -quarterTurn, quarterTurn);
}

}  // namespace

ui::TouchContact penContact(const PenAxes& axes, std::span<const std::pair<int, double>> values,
                            ui::TouchContact before) {
    ui::TouchContact contact = before;
    contact.kind = ui::TouchKind::Pen;
    for (const auto& [number, value] : values) {
        const auto isOf = [number](const std::optional<PenAxis>& axis) {
            return axis && axis->number == number;
        };
        if (isOf(axes.pressure) && axes.pressure->most > axes.pressure->least) {
            contact.pressure = std::clamp(
                (value - axes.pressure->least) / (axes.pressure->most - axes.pressure->least), 0.0,
                1.0);
        }
        if (isOf(axes.tiltX)) contact.tilt.x = degreesOf(*axes.tiltX, value);
        if (isOf(axes.tiltY)) contact.tilt.y = degreesOf(*axes.tiltY, value);
    }
    return contact;
}

}  // namespace kalim
