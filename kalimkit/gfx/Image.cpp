#include "kalimkit/gfx/Image.h"

#include <cassert>
#include <cmath>
#include <utility>

namespace kalim::gfx {

Raster::~Raster() = default;

AffineTransform uprightTransform(ImageOrientation orientation, Size seen) {
    const double w = seen.width;
    const double h = seen.height;
    switch (orientation) {
        case ImageOrientation::Up:
            break;
        case ImageOrientation::Down:
            return {-1, 0, 0, -1, w, h};
        case ImageOrientation::Left:
            return {0, -1, 1, 0, 0, h};
        case ImageOrientation::Right:
            return {0, 1, -1, 0, w, 0};
        case ImageOrientation::UpMirrored:
            return {-1, 0, 0, 1, w, 0};
        case ImageOrientation::DownMirrored:
            return {1, 0, 0, -1, 0, h};
        case ImageOrientation::LeftMirrored:
            return {0, 1, 1, 0, 0, 0};
        case ImageOrientation::RightMirrored:
            return {0, -1, -1, 0, w, h};
    }
    return {};
}

Image::Image(std::shared_ptr<const Raster> raster, double scale, ImageOrientation orientation,
             const PixelGrid& grid)
    : _raster(std::move(raster)),
      _scale(std::isfinite(scale) && scale > 0 ? scale : 1),
      _orientation(orientation),
      _grid(grid) {
    assert(_raster);
}

Size Image::size() const {
    const PixelSize pixels = pixelSize();
    const Size stored{pixels.width / _scale, pixels.height / _scale};
    return exchangesSides(_orientation) ? Size{stored.height, stored.width} : stored;
}

}  // namespace kalim::gfx
