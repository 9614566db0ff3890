#include "kalimkit/theme/KeptPictures.h"

#include <algorithm>
#include <utility>

#include "kalimkit/theme/ColorImages.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/theme/IconDrawing.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

KeptPictures& KeptPictures::current() {
    return ui::Environment::current().attachment<KeptPictures>();
}

gfx::ImageRef KeptPictures::iconImage(std::string_view name, const Icon& icon, double scale,
                                      gfx::Size size, bool isMirrored) {
    for (const Drawn& drawn : _drawn) {
        if (drawn.name == name && drawn.scale == scale && drawn.isMirrored == isMirrored)
            return drawn.image;
    }
    gfx::Device& device = ui::Environment::current().device();
    const gfx::Size own{static_cast<double>(icon.width), static_cast<double>(icon.height)};
    const gfx::Size whole = size == gfx::Size() ? own : size;
    const std::shared_ptr<gfx::Surface> surface = device.makeSurface(whole, scale, false);
    if (!surface) return nullptr;
    gfx::Context& context = surface->context();
    if (isMirrored) {
        context.translate(whole.width, 0);
        context.scale(-1, 1);
    }
    context.translate((whole.width - own.width) / 2, (whole.height - own.height) / 2);
    drawIcon(context, icon);
    _drawn.push_back({std::string(name), scale, isMirrored, surface->makeImage()});
    return _drawn.back().image;
}

gfx::ImageRef KeptPictures::highlightBackground() {
    if (!_highlightBackground) {
        _highlightBackground = imageWithColor2(colorWithHex2Alpha(0xEBEDF0, 0.9));
    }
    return _highlightBackground;
}

std::string KeptPictures::nameOf(const gfx::ImageRef& image) const {
    if (!image) return {};
    for (const Drawn& drawn : _drawn) {
        if (drawn.image == image) return drawn.name;
    }
    for (const Copy& copy : _copies) {
        if (copy.image.lock() == image) return copy.name;
    }
    return {};
}

void KeptPictures::noteCopy(const gfx::ImageRef& copy, const gfx::ImageRef& original) {
    std::erase_if(_copies, [](const Copy& other) { return other.image.expired(); });
    std::string name = nameOf(original);
    if (!name.empty()) _copies.push_back({std::move(name), copy});
}

}  // namespace kalim
