#include "kalimkit/ui/desk/ColorFields.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/ui/desk/DeskButton.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double inset = 4;
constexpr double knobRadius = 6;
// Of the ground's picture, which is stretched.
constexpr int squareSide = 64;
constexpr int stripLength = 120;
constexpr double keyStep = 0.01;
constexpr double largeStep = 0.1;

}  // namespace

std::shared_ptr<ColorField> ColorField::make(ColorPart part) {
    const std::shared_ptr<ColorField> field(new ColorField(part));
    field->init({});
    return field;
}

std::string ColorField::accessibilityValue() const {
    const auto percent = [](double share) { return std::to_string(std::lround(share * 100)); };
    switch (_part) {
        case ColorPart::Hue:
            return std::to_string(std::lround(color().hue * 360)) + "°";
        case ColorPart::Alpha:
            return percent(color().alpha) + "%";
        default:
            return percent(color().saturation) + "%, " + percent(color().value) + "%";
    }
}

// ---- parts

gfx::Point ColorField::shares() const {
    switch (_part) {
        case ColorPart::Hue:
            return {color().hue, 0.5};
        case ColorPart::Alpha:
            return {color().alpha, 0.5};
        default:
            return {color().saturation, color().value};
    }
}

HueColor ColorField::colorWith(gfx::Point shares) const {
    const double x = std::clamp(shares.x, 0.0, 1.0);
    HueColor color = shown();
    switch (_part) {
        case ColorPart::Hue:
            color.hue = x;
            break;
        case ColorPart::Alpha:
            color.alpha = x;
            break;
        default:
            color.saturation = x;
            color.value = std::clamp(shares.y, 0.0, 1.0);
            break;
    }
    return color;
}

gfx::Rect ColorField::room() const {
    return bounds().inset(inset, inset);
}

// ---- keys and fingers

bool ColorField::handleKey(std::string_view key, bool /*isRepeated*/) {
    double step = keyStep;
    if (key.starts_with("shift+")) {
        step = largeStep;
        key.remove_prefix(key.find('+') + 1);
    }
    gfx::Point to = shares();
    if (key == "left" || key == "right") {
        to.x += key == "right" ? step : -step;
    } else if (key == "up" || key == "down") {
        (_part == ColorPart::SaturationAndValue ? to.y : to.x) += key == "up" ? step : -step;
    } else {
        return false;
    }
    change(colorWith(to), true);
    return true;
}

HueColor ColorField::valueAt(gfx::Point p) const {
    const gfx::Rect whole = room();
    if (whole.isEmpty()) return color();
    return colorWith(
        {(p.x - whole.minX()) / whole.size.width, (whole.maxY() - p.y) / whole.size.height});
}

// ---- drawing

gfx::ImageRef ColorField::ground() const {
    // What is picked itself does not show in it.
    HueColor key = color();
    if (_part == ColorPart::SaturationAndValue) key.saturation = key.value = key.alpha = 1;
    if (_part == ColorPart::Hue) key = {};
    if (_part == ColorPart::Alpha) key.alpha = 1;
    const gfx::Color seen = colorOf(key);
    if (_ground && seen == _groundColor) return _ground;
    const bool isSquare = _part == ColorPart::SaturationAndValue;
    const int width = isSquare ? squareSide : stripLength;
    const int height = isSquare ? squareSide : 1;
    gfx::Bitmap bitmap(width, height);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const double across = static_cast<double>(x) / (width - 1);
            HueColor here = key;
            if (_part == ColorPart::Hue) here = {across, 1, 1, 1};
            if (_part == ColorPart::Alpha) here.alpha = across;
            if (isSquare) {
                here.saturation = across;
                here.value = 1 - static_cast<double>(y) / (height - 1);
            }
            bitmap.setColorAt(x, y, colorOf(here));
        }
    }
    _groundColor = seen;
    _ground =
        Environment::current().device().makeImage(std::move(bitmap), 1, gfx::ImageOrientation::Up);
    return _ground;
}

void ColorField::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette palette = Palette::current();
    const gfx::Rect whole = room();
    if (_part == ColorPart::Alpha) drawSquares(context, whole);
    if (const gfx::ImageRef picture = ground()) {
        // Stretched pixels fade out at the picture's edge, which lies half of one inside.
        const gfx::GraphicsStateGuard guard(context);
        context.clipToRect(whole);
        const gfx::Size size = picture->size();
        const double x = whole.size.width / std::max(size.width - 1, 1.0) / 2;
        const double y = size.height > 1 ? whole.size.height / (size.height - 1) / 2 : 0;
        context.drawImage(*picture, whole.inset(-x, -y));
    }
    context.setStrokeColor(palette.track);
    context.setLineWidth(1);
    context.strokeRect(whole.inset(0.5, 0.5));
    const gfx::Point at{whole.minX() + shares().x * whole.size.width,
                        whole.maxY() - shares().y * whole.size.height};
    const auto ring = [&](double radius, const gfx::Color& color, double width) {
        context.setStrokeColor(color);
        context.setLineWidth(width);
        context.strokeEllipse({at.x - radius, at.y - radius, 2 * radius, 2 * radius});
    };
    ring(knobRadius - 1, {0, 0, 0}, 3.5);
    ring(knobRadius - 1, {1, 1, 1}, 2);
    drawFocus(context, palette, 2);
}

}  // namespace kalim::ui
