#include "kalimkit/gfx/Contrast.h"

#include <cmath>

namespace kalim::gfx {

namespace {

double linear(double component) {
    return component <= 0.04045 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

constexpr double largeTextRatio = 3;

double contrastRatio(double lighter, double darker) {
    return (lighter + 0.05) / (darker + 0.05);
}

}  // namespace

double luminance(const Color& color) {
    return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

Color contrasting(const Color& color) {
    const bool isWhiteSeen = contrastRatio(1, luminance(color)) >= largeTextRatio;
    return isWhiteSeen ? Color{1, 1, 1, 1} : Color{0, 0, 0, 1};
}

}  // namespace kalim::gfx
