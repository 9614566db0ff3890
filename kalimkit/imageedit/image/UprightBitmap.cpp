#include "kalimkit/imageedit/image/UprightBitmap.h"

#include <cstdint>
#include <cstring>

namespace kalim {

namespace {

// Where in the raster the upright picture's pixel (x, y) comes from: origin + x * right + y * down.
struct Walk {
    int x = 0;
    int y = 0;
    int rightX = 1;
    int rightY = 0;
    int downX = 0;
    int downY = 1;
};

Walk walkFor(gfx::PixelSize raster, gfx::ImageOrientation orientation) {
    const int right = raster.width - 1;
    const int bottom = raster.height - 1;
    switch (orientation) {
        case gfx::ImageOrientation::Down:
            return {right, bottom, -1, 0, 0, -1};
        case gfx::ImageOrientation::Left:
            return {right, 0, 0, 1, -1, 0};
        case gfx::ImageOrientation::Right:
            return {0, bottom, 0, -1, 1, 0};
        case gfx::ImageOrientation::UpMirrored:
            return {right, 0, -1, 0, 0, 1};
        case gfx::ImageOrientation::DownMirrored:
            return {0, bottom, 1, 0, 0, -1};
        case gfx::ImageOrientation::LeftMirrored:
            return {0, 0, 0, 1, 1, 0};
        case gfx::ImageOrientation::RightMirrored:
            return {right, bottom, 0, -1, -1, 0};
        case gfx::ImageOrientation::Up:
            break;
    }
    return {};
}

}  // namespace

gfx::Bitmap uprightBitmap(const gfx::Bitmap& raster, gfx::ImageOrientation orientation) {
    const Walk walk = walkFor(raster.size(), orientation);
    const bool exchanged = gfx::exchangesSides(orientation);
    auto upright = gfx::Bitmap::unwritten(exchanged ? raster.height() : raster.width(),
                                          exchanged ? raster.width() : raster.height());
    for (int y = 0; y < upright.height(); ++y) {
        std::uint8_t* target = upright.row(y);
        int sourceX = walk.x + y * walk.downX;
        int sourceY = walk.y + y * walk.downY;
        for (int x = 0; x < upright.width(); ++x, target += 4) {
            std::memcpy(target, raster.row(sourceY) + static_cast<std::ptrdiff_t>(sourceX) * 4, 4);
            sourceX += walk.rightX;
            sourceY += walk.rightY;
        }
    }
    return upright;
}

}  // namespace kalim
