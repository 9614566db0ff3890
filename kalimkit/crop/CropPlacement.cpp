#include "kalimkit/crop/CropPlacement.h"

#include <algorithm>

#include "kalimkit/crop/CropLayout.h"

namespace kalim {

gfx::Rect coveredCropShare(const gfx::Rect& share) {
    const double shrink = std::max({share.size.width, share.size.height, 1.0});
    const gfx::Size size = share.size * (1 / shrink);
    const gfx::Point center = share.center();
    return {std::clamp(center.x - size.width / 2, 0.0, std::max(1 - size.width, 0.0)),
            std::clamp(center.y - size.height / 2, 0.0, std::max(1 - size.height, 0.0)), size.width,
            size.height};
}

gfx::Rect turnedCropShare(const gfx::Rect& share, std::int32_t quarterTurns) {
    const auto [width, height] = share.size;
    switch (quarterTurns) {
        case -1:
            return {share.minY(), 1 - share.maxX(), height, width};
        case 1:
            return {1 - share.maxY(), share.minX(), height, width};
        case 2:
            return {1 - share.maxX(), 1 - share.maxY(), width, height};
        default:
            return share;
    }
}

CropPlacement CropPlacement::settled(gfx::Size image, const gfx::Rect& share,
                                     const gfx::Rect& content) {
    CropPlacement placement;
    const gfx::Size size = cropFittedSize(image, content.size);
    const gfx::Rect part{share.minX() * size.width, share.minY() * size.height,
                         share.size.width * size.width, share.size.height * size.height};
    const CropRecentring recentring = recentredCropFrame(part, content);
    placement.imageSize = size;
    placement.zoomScale = recentring.factor;
    placement.frame = recentring.frame;
    placement.image = {recentring.frame.origin - part.origin * recentring.factor,
                       size * recentring.factor};
    return placement;
}

}  // namespace kalim
