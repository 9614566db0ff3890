#include "kalimkit/image/UprightBitmap.h"

#include <algorithm>
#include <cstddef>
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

// What is read and written together stays in the processor's cache, whatever way the walk goes.
constexpr int tileSide = 32;

struct Corner {
    int x;
    int y;
};

void fillTile(gfx::Bitmap& upright, const gfx::Bitmap& raster, const Walk& walk, Corner corner) {
    const int right = std::min(corner.x + tileSide, upright.width());
    const int bottom = std::min(corner.y + tileSide, upright.height());
    const std::ptrdiff_t stride = static_cast<std::ptrdiff_t>(raster.stride());
    const std::ptrdiff_t step = walk.rightX * std::ptrdiff_t{4} + walk.rightY * stride;
    for (int y = corner.y; y < bottom; ++y) {
        const int sourceX = walk.x + corner.x * walk.rightX + y * walk.downX;
        const int sourceY = walk.y + corner.x * walk.rightY + y * walk.downY;
        const std::uint8_t* const source =
            raster.row(sourceY) + static_cast<std::ptrdiff_t>(sourceX) * 4;
        std::uint8_t* const target = upright.row(y) + static_cast<std::ptrdiff_t>(corner.x) * 4;
        for (std::ptrdiff_t i = 0; i < right - corner.x; ++i)
            std::memcpy(target + i * 4, source + i * step, 4);
    }
}

}  // namespace

gfx::Bitmap uprightBitmap(const gfx::Bitmap& raster, gfx::ImageOrientation orientation) {
    const Walk walk = walkFor(raster.size(), orientation);
    const bool exchanged = gfx::exchangesSides(orientation);
    auto upright = gfx::Bitmap::unwritten(exchanged ? raster.height() : raster.width(),
                                          exchanged ? raster.width() : raster.height());
    for (int y = 0; y < upright.height(); y += tileSide) {
        for (int x = 0; x < upright.width(); x += tileSide)
            fillTile(upright, raster, walk, {x, y});
    }
    return upright;
}

}  // namespace kalim
