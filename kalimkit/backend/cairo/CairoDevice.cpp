#include "kalimkit/backend/cairo/CairoDevice.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <utility>

#include "kalimkit/backend/cairo/CairoRaster.h"
#include "kalimkit/backend/cairo/CairoResources.h"
#include "kalimkit/backend/cairo/CairoSurface.h"

namespace kalim::gfx {

std::shared_ptr<CairoDevice> CairoDevice::make() {
    return std::shared_ptr<CairoDevice>(new CairoDevice);
}

CairoDevice::CairoDevice() : _resources(std::make_shared<CairoResources>()) {}

CairoDevice::~CairoDevice() = default;

std::shared_ptr<Surface> CairoDevice::makeSurface(Size size, double scale, bool opaque) {
    return CairoSurface::make(size, scale, opaque, _resources);
}

ImageRef CairoDevice::makeImage(Bitmap bitmap, double scale, ImageOrientation orientation) {
    if (bitmap.isEmpty()) return {};
    auto raster =
        std::make_shared<const CairoRaster>(std::make_shared<const Bitmap>(std::move(bitmap)));
    return std::make_shared<const Image>(std::move(raster), scale, orientation);
}

std::vector<double> CairoDevice::advances(std::string_view text, const Font& font) {
    return _resources->text.shape(text, font)->advances();
}

LineMetrics CairoDevice::lineMetrics(const Font& font) {
    return _resources->text.lineMetrics(font);
}

std::vector<std::size_t> CairoDevice::boundaries(std::string_view text, TextBoundary kind) {
    return _resources->text.boundaries(text, kind);
}

const std::uint8_t* CairoDevice::pixels(const Surface& surface) {
    const auto* const own = dynamic_cast<const CairoSurface*>(&surface);
    return own != nullptr ? own->bytes() : nullptr;
}

void CairoDevice::releaseFontCaches() {
    pango_cairo_font_map_set_default(nullptr);
    cairo_debug_reset_static_data();
    FcFini();
}

}  // namespace kalim::gfx
