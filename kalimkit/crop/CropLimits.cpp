#include "kalimkit/crop/CropLimits.h"

#include <algorithm>

namespace kalim {

namespace {

// Of the limits themselves, for what the arithmetic leaves beside them.
constexpr double tolerance = 1e-12;

}  // namespace

CropOutcome cropOutcome(const CropPicture& picture, gfx::Size frame, gfx::Size content) {
    const auto& [size, raster, zoomScale] = picture;
    if (size.isEmpty() || frame.isEmpty()) return {};
    const double zoom = std::max({zoomScale, frame.width / size.width, frame.height / size.height});
    const double factor = std::min(content.width / frame.width, content.height / frame.height);
    return {zoom * factor,
            {frame.width / (size.width * zoom) * raster.width,
             frame.height / (size.height * zoom) * raster.height}};
}

CropLimits CropLimits::from(const CropOutcome& outcome) {
    return {std::max(largestCropZoom, outcome.zoomScale),
            {std::min(leastCropPixels, outcome.pixels.width),
             std::min(leastCropPixels, outcome.pixels.height)}};
}

bool CropLimits::allow(const CropOutcome& outcome) const {
    return outcome.zoomScale <= largestZoom * (1 + tolerance) &&
           outcome.pixels.width >= leastPixels.width * (1 - tolerance) &&
           outcome.pixels.height >= leastPixels.height * (1 - tolerance);
}

}  // namespace kalim
