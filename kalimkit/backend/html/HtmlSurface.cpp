#include "kalimkit/backend/html/HtmlSurface.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/backend/html/HtmlImports.h"
#include "kalimkit/backend/html/HtmlRaster.h"

namespace kalim::gfx {

namespace {

// Forgives what a product of decimal fractions may have gained.
constexpr double roundingError = 1e-6;
// The page knows what it has room for.
constexpr double largestSide = 1 << 30;

// Zero for a length that no surface can have.
int pixelLength(double points, double scale) {
    const double pixels = points * scale;
    if (!(points > 0 && pixels > 0 && pixels - roundingError <= largestSide)) return 0;
    return std::max(static_cast<int>(std::ceil(pixels - roundingError)), 1);
}

}  // namespace

std::shared_ptr<HtmlSurface> HtmlSurface::make(Size size, double scale, bool opaque) {
    const PixelSize pixels{pixelLength(size.width, scale), pixelLength(size.height, scale)};
    if (pixels.isEmpty()) return nullptr;
    const int number = page::surfaceMake(pixels.width, pixels.height, opaque);
    if (number == 0) return nullptr;
    return std::shared_ptr<HtmlSurface>(new HtmlSurface(number, pixels, scale, opaque));
}

HtmlSurface::HtmlSurface(int number, PixelSize size, double scale, bool opaque)
    : _number(number),
      _size(size),
      _scale(scale),
      _isOpaque(opaque),
      _context(number, size, scale) {}

HtmlSurface::~HtmlSurface() {
    page::release(_number);
}

ImageRef HtmlSurface::makeImage() {
    auto raster = HtmlRaster::adopt(page::surfacePicture(_number));
    if (!raster) return nullptr;
    return std::make_shared<const Image>(std::move(raster), _scale, ImageOrientation::Up);
}

}  // namespace kalim::gfx
