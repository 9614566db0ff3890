#include "kalimkit/ui/desk/Slider.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/gfx/RoundedRect.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double knobRadius = 7;
constexpr double trackHeight = 4;
constexpr double stopRadius = 3.5;
// A finger so near a stop takes it.
constexpr double stopReach = 4;
constexpr double largeStep = 10;
constexpr double usualSteps = 100;

}  // namespace

std::shared_ptr<Slider> Slider::make(double least, double most) {
    const std::shared_ptr<Slider> slider(new Slider);
    constexpr double width = 120;
    slider->init({0, 0, width, height});
    if (std::isfinite(least) && std::isfinite(most) && least < most) {
        slider->_least = least;
        slider->_most = most;
    }
    slider->show(slider->_least);
    slider->_step = (slider->_most - slider->_least) / usualSteps;
    return slider;
}

void Slider::setValue(double value) {
    if (isHeld() || std::isnan(value)) return;
    show(std::clamp(value, _least, _most));
}

void Slider::setStep(double step) {
    if (std::isfinite(step) && step > 0) _step = step;
}

void Slider::setStops(std::vector<double> stops) {
    _stops = std::move(stops);
    setNeedsDisplay();
}

void Slider::setSpeaker(std::function<std::string(double value)> speaker) {
    _speaker = std::move(speaker);
}

std::string Slider::accessibilityValue() const {
    return _speaker ? _speaker(value()) : std::to_string(std::lround(value()));
}

// ---- keys

bool Slider::handleKey(std::string_view key, bool /*isRepeated*/) {
    double steps = 1;
    if (key.starts_with("shift+")) {
        steps = largeStep;
        key.remove_prefix(key.find('+') + 1);
    }
    if (key == "right" || key == "up") {
        change(stepped(value() + steps * _step), true);
    } else if (key == "left" || key == "down") {
        change(stepped(value() - steps * _step), true);
    } else if (key == "home" || key == "end") {
        change(key == "home" ? _least : _most, true);
    } else {
        return false;
    }
    return true;
}

// ---- places

gfx::Rect Slider::track() const {
    return {bounds().minX() + knobRadius + 2, bounds().midY() - trackHeight / 2,
            std::max(bounds().size.width - 2 * (knobRadius + 2), 1.0), trackHeight};
}

double Slider::placeOf(double value) const {
    return track().minX() + (value - _least) / (_most - _least) * track().size.width;
}

double Slider::valueAt(gfx::Point p) const {
    const double x = mirrored({p, {}}).minX();
    for (const double stop : _stops) {
        if (std::abs(placeOf(stop) - x) <= stopReach) return stop;
    }
    const double share = (x - track().minX()) / track().size.width;
    return stepped(_least + std::clamp(share, 0.0, 1.0) * (_most - _least));
}

double Slider::stepped(double value) const {
    return std::clamp(_least + std::round((value - _least) / _step) * _step, _least, _most);
}

// ---- drawing

void Slider::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette palette = Palette::current();
    const gfx::Color& active = isEnabled() ? palette.accent : palette.disabledText;
    const gfx::Rect line = track();
    const double x = placeOf(value());
    context.setFillColor(palette.track);
    context.addPath(gfx::roundedRect(line, trackHeight / 2));
    context.fill();
    for (const double stop : _stops) {
        const double place = placeOf(stop);
        context.fillEllipse(mirrored(
            {place - stopRadius, line.midY() - stopRadius, 2 * stopRadius, 2 * stopRadius}));
    }
    context.setFillColor(active);
    context.addPath(gfx::roundedRect(
        mirrored({line.minX(), line.minY(), x - line.minX(), trackHeight}), trackHeight / 2));
    context.fill();
    const double radius = isHovered() || isHighlighted() ? knobRadius + 1 : knobRadius;
    context.fillEllipse(mirrored({x - radius, line.midY() - radius, 2 * radius, 2 * radius}));
    context.setFillColor(palette.raised);
    const double hole = radius - 2.5;
    context.fillEllipse(mirrored({x - hole, line.midY() - hole, 2 * hole, 2 * hole}));
    drawFocus(context, palette, cornerRadius);
}

}  // namespace kalim::ui
