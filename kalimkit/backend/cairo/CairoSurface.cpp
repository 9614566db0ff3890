#include "kalimkit/backend/cairo/CairoSurface.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>

#include "kalimkit/backend/cairo/CairoGeometry.h"
#include "kalimkit/backend/cairo/CairoRaster.h"

namespace kalim::gfx {

namespace {

// Forgives what a product of decimal fractions may have gained.
constexpr double roundingError = 1e-6;

// Zero for a length that no surface can have.
int pixelLength(double points, double scale) {
    const double pixels = points * scale;
    if (!(points > 0 && pixels > 0 && pixels - roundingError <= largestSide)) return 0;
    return std::max(static_cast<int>(std::ceil(pixels - roundingError)), 1);
}

// Cairo leaves the fourth byte of its format without alpha undefined. Whole pixels at once, because
// writing that byte alone takes a second pass over the memory.
void copyAsOpaque(const std::uint8_t* from, std::uint8_t* to, std::size_t byteCount) {
    constexpr std::uint32_t alpha =
        std::bit_cast<std::uint32_t>(std::array<std::uint8_t, 4>{0, 0, 0, 255});
    for (std::size_t i = 0; i < byteCount; i += 4) {
        std::uint32_t pixel = 0;
        std::memcpy(&pixel, from + i, 4);
        pixel |= alpha;
        std::memcpy(to + i, &pixel, 4);
    }
}

}  // namespace

std::shared_ptr<CairoSurface> CairoSurface::make(Size size, double scale, bool opaque,
                                                 std::shared_ptr<CairoResources> resources) {
    const int width = pixelLength(size.width, scale);
    const int height = pixelLength(size.height, scale);
    if (width == 0 || height == 0) return {};
    // A format without alpha reads as opaque whatever is drawn, and starts black.
    SurfaceHandle surface(cairo_image_surface_create(
        opaque ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32, width, height));
    if (cairo_surface_status(surface.get()) != CAIRO_STATUS_SUCCESS) return {};
    return std::shared_ptr<CairoSurface>(
        new CairoSurface(std::move(surface), scale, std::move(resources)));
}

CairoSurface::CairoSurface(SurfaceHandle surface, double scale,
                           std::shared_ptr<CairoResources> resources)
    : _surface(std::move(surface)),
      _scale(scale),
      _context(_surface.get(), scale, std::move(resources)) {}

PixelSize CairoSurface::pixelSize() const {
    return {cairo_image_surface_get_width(_surface.get()),
            cairo_image_surface_get_height(_surface.get())};
}

bool CairoSurface::isOpaque() const {
    return cairo_image_surface_get_format(_surface.get()) == CAIRO_FORMAT_RGB24;
}

ImageRef CairoSurface::makeImage() {
    const PixelSize size = pixelSize();
    auto bitmap = Bitmap::unwritten(size.width, size.height);
    if (isOpaque()) {
        copyAsOpaque(bytes(), bitmap.data(), bitmap.byteCount());
    } else {
        std::memcpy(bitmap.data(), bytes(), bitmap.byteCount());
    }
    auto raster = std::make_shared<const CairoRaster>(
        std::make_shared<const Bitmap>(std::move(bitmap)), isOpaque());
    return std::make_shared<const Image>(std::move(raster), _scale, ImageOrientation::Up);
}

const std::uint8_t* CairoSurface::bytes() const {
    cairo_surface_flush(_surface.get());
    return cairo_image_surface_get_data(_surface.get());
}

}  // namespace kalim::gfx
