#include "kalimkit/backend/cairo/CairoDevice.h"

#include <fontconfig/fontconfig.h>
#include <pango/pangocairo.h>

#include <chrono>
#include <filesystem>
#include <iterator>
#include <span>
#include <thread>
#include <utility>

#include "kalimkit/backend/cairo/CairoRaster.h"
#include "kalimkit/backend/cairo/CairoResources.h"
#include "kalimkit/backend/cairo/CairoSurface.h"
#include "kalimkit/backend/cairo/FriBidiDirections.h"

namespace kalim::gfx {

namespace {

// Pango looks for fonts on threads of its own, which hold on to fonts until they end, some
// milliseconds after the last font map has gone. Nobody can join them, so this waits until the
// process has no other thread, for a second at most. Whether it came to that.
bool waitForFontThreads() {
    const auto hasOthers = [] {
        std::error_code error;
        const std::filesystem::directory_iterator threads("/proc/self/task", error);
        return std::distance(begin(threads), end(threads)) > 1;
    };
    for (int tries = 0; hasOthers(); ++tries) {
        if (tries == 1000) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

}  // namespace

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
    return _resources->text().shape(text, font)->advances();
}

LineMetrics CairoDevice::lineMetrics(const Font& font) {
    return _resources->text().lineMetrics(font);
}

std::vector<std::size_t> CairoDevice::boundaries(std::string_view text, TextBoundary kind) {
    return _resources->text().boundaries(text, kind);
}

TextDirections CairoDevice::directions(std::string_view paragraph, BaseDirection base) {
    const std::vector<std::size_t> edges = boundaries(paragraph, TextBoundary::Grapheme);
    return friBidiDirections(paragraph, std::span(edges).first(edges.size() - 1), base);
}

AddedFont CairoDevice::addFont(std::vector<std::uint8_t> file) {
    AddedFont added = _resources->text().addFont(file);
    if (added) textsChanged();
    return added;
}

const std::uint8_t* CairoDevice::pixels(const Surface& surface) {
    const auto* const own = dynamic_cast<const CairoSurface*>(&surface);
    return own != nullptr ? own->bytes() : nullptr;
}

void CairoDevice::releaseFontCaches() {
    // Cairo ends the process when it is to forget a font that is still in use.
    if (!waitForFontThreads()) return;
    pango_cairo_font_map_set_default(nullptr);
    cairo_debug_reset_static_data();
    FcFini();
}

}  // namespace kalim::gfx
