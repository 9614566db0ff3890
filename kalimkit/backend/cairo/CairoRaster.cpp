#include "kalimkit/backend/cairo/CairoRaster.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstdint>
#include <utility>

#include "kalimkit/backend/cairo/AreaShrink.h"
#include "kalimkit/backend/cairo/CairoGeometry.h"

namespace kalim::gfx {

static_assert(std::endian::native == std::endian::little, "Bitmap's byte order is Cairo's");

namespace {

const cairo_user_data_key_t pixelsKey{};

SurfaceHandle wrap(BitmapRef pixels, bool isOpaque) {
    const PixelSize size = pixels->size();
    if (size.width > largestSide || size.height > largestSide) return {};
    // Cairo takes a pointer to writable bytes, but nothing is ever drawn into these.
    auto* const bytes = const_cast<std::uint8_t*>(pixels->data());
    SurfaceHandle surface(cairo_image_surface_create_for_data(
        bytes, isOpaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, size.width, size.height,
        static_cast<int>(pixels->stride())));
    cairo_surface_set_user_data(surface.get(), &pixelsKey, new BitmapRef(std::move(pixels)),
                                [](void* data) { delete static_cast<BitmapRef*>(data); });
    return surface;
}

// Whether no pixel shows what is under it, which is drawn twice as fast then. Pictures of more
// pixels are not looked at.
bool isFoundOpaque(const Bitmap& pixels) {
    constexpr std::int64_t mostPixels = 4'000'000;
    if (std::int64_t{pixels.width()} * pixels.height() > mostPixels) return false;
    for (int y = 0; y < pixels.height(); ++y) {
        const std::uint8_t* const row = pixels.row(y);
        for (int x = 0; x < pixels.width(); ++x) {
            if (row[4 * x + 3] != 255) return false;
        }
    }
    return true;
}

SurfaceHandle share(const SurfaceHandle& surface) {
    return SurfaceHandle(cairo_surface_reference(surface.get()));
}

int reducedSide(int side, double factor) {
    const double needed = std::max(factor, static_cast<double>(side) / largestSide);
    return std::max(static_cast<int>(std::ceil(side / std::ceil(needed))), 1);
}

}  // namespace

CairoRaster::CairoRaster(BitmapRef pixels, bool isOpaque)
    : _pixels(std::move(pixels)),
      _isOpaque(isOpaque || isFoundOpaque(*_pixels)),
      _surface(wrap(_pixels, _isOpaque)) {
    assert(!_pixels->isEmpty());
}

std::shared_ptr<const CairoRaster> CairoRaster::of(const Image& image) {
    if (auto own = std::dynamic_pointer_cast<const CairoRaster>(image.raster())) return own;
    return std::make_shared<const CairoRaster>(image.pixels());
}

CairoRaster::Source CairoRaster::source(double factorX, double factorY) const {
    const PixelSize wanted{reducedSide(size().width, factorX), reducedSide(size().height, factorY)};
    if (wanted == size()) return {share(_surface), {}};
    return reduced(wanted);
}

CairoRaster::Source CairoRaster::reduced(PixelSize wanted) const {
    if (wanted != _reducedSize) {
        _reduced = wrap(std::make_shared<const Bitmap>(areaShrink(*_pixels, wanted)), _isOpaque);
        _reducedSize = wanted;
    }
    return {share(_reduced),
            AffineTransform::scaling(static_cast<double>(size().width) / wanted.width,
                                     static_cast<double>(size().height) / wanted.height)};
}

}  // namespace kalim::gfx
