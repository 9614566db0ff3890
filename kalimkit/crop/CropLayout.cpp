#include "kalimkit/crop/CropLayout.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/crop/CropLimits.h"

namespace kalim {

namespace {

constexpr double leastNaturalRatio = 0.5;
constexpr double zoomRange = 5;
constexpr double largestPixel = 4;

// Something is left even of a picture that is very long and thin.
double flooredInSinglePrecision(double length) {
    return std::max(static_cast<double>(std::floor(static_cast<float>(length))), 1.0);
}

}  // namespace

double cropNaturalTopLength(gfx::Size image, gfx::Size view) {
    if (image.isEmpty() || view.isEmpty()) return 0;
    const double ratio = image.height / image.width;
    if (ratio < leastNaturalRatio || ratio > view.height / view.width) return 0;
    return std::round((view.height - ratio * view.width) * 0.5);
}

gfx::Size cropFittedSize(gfx::Size image, gfx::Size content) {
    if (image.isEmpty()) return {};
    const double scale = std::min(content.width / image.width, content.height / image.height);
    return {flooredInSinglePrecision(image.width * scale),
            flooredInSinglePrecision(image.height * scale)};
}

ui::EdgeInsets cropContentInset(const gfx::Rect& frame, gfx::Size view, double naturalTopLength,
                                double safeAreaTop) {
    return {frame.minY() - naturalTopLength - safeAreaTop, frame.minX(),
            // The area at the top is deliberately subtracted here, too.
            (view.height - frame.maxY()) + naturalTopLength - safeAreaTop,
            view.width - frame.maxX()};
}

CropZoomLimits cropZoomLimits(gfx::Size image, gfx::Size frame, double pointsPerPixel) {
    if (image.isEmpty() || frame.isEmpty() || !(pointsPerPixel > 0)) return {};
    const double minimum = std::max(frame.width / image.width, frame.height / image.height);
    const double maximum = std::max(zoomRange * minimum, largestPixel / pointsPerPixel);
    return {minimum, std::max(std::min(maximum, largestCropZoom), minimum)};
}

CropRecentring recentredCropFrame(const gfx::Rect& frame, const gfx::Rect& content) {
    if (frame.isEmpty() || content.isEmpty()) return {frame, 1};
    const double factor =
        std::min(content.size.width / frame.size.width, content.size.height / frame.size.height);
    const gfx::Size size = frame.size * factor;
    return {{{content.midX() - size.width / 2, content.midY() - size.height / 2}, size}, factor};
}

// Each side by itself: the view's proportions are those of the raster only to a point.
gfx::Rect cropCutRect(const gfx::Rect& bright, gfx::PixelSize raster, gfx::Size frame,
                      double zoomScale) {
    if (frame.isEmpty()) return {};
    const double across = raster.width / frame.width * zoomScale;
    const double down = raster.height / frame.height * zoomScale;
    return {bright.minX() * across, bright.minY() * down, bright.size.width * across,
            bright.size.height * down};
}

std::int32_t nextCropOrientation(std::int32_t orientation) {
    return orientation >= 0 && orientation <= 3 ? (orientation + 1) % 4 : 1;
}

std::int32_t cropQuarterTurns(std::int32_t from, std::int32_t to) {
    switch (to - from) {
        case 1:
        case -3:
            return -1;
        case 2:
        case -2:
            return 2;
        case -1:
        case 3:
            return 1;
        default:
            return 0;
    }
}

CropTurnsBack cropTurnsBack(std::int32_t difference) {
    if (difference == 0) return {};
    if (difference == 2 || difference == -2) return {2, false};
    if (difference == -1 || difference == 3) return {1, true};
    return {1, false};
}

}  // namespace kalim
