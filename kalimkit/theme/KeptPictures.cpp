#include "kalimkit/theme/KeptPictures.h"

#include <algorithm>

#include "kalimkit/theme/ColorImages.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/theme/IconDrawing.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

KeptPictures& KeptPictures::current() {
    return ui::Environment::current().attachment<KeptPictures>();
}

gfx::ImageRef KeptPictures::iconImage(const Icon& icon, double scale) {
    for (const Drawn& drawn : _drawn) {
        if (drawn.icon == &icon && drawn.scale == scale) return drawn.image;
    }
    gfx::Device& device = ui::Environment::current().device();
    const gfx::Size size{static_cast<double>(icon.width), static_cast<double>(icon.height)};
    const std::shared_ptr<gfx::Surface> surface = device.makeSurface(size, scale, false);
    if (!surface) return nullptr;
    drawIcon(surface->context(), icon);
    _drawn.push_back({&icon, scale, surface->makeImage()});
    return _drawn.back().image;
}

gfx::ImageRef KeptPictures::highlightBackground() {
    if (!_highlightBackground) {
        _highlightBackground = imageWithColor2(colorWithHex2Alpha(0xEBEDF0, 0.9));
    }
    return _highlightBackground;
}

const Icon* KeptPictures::iconShownBy(const gfx::ImageRef& image) const {
    if (!image) return nullptr;
    for (const Drawn& drawn : _drawn) {
        if (drawn.image == image) return drawn.icon;
    }
    for (const Copy& copy : _copies) {
        if (copy.image.lock() == image) return copy.icon;
    }
    return nullptr;
}

void KeptPictures::noteCopy(const gfx::ImageRef& copy, const gfx::ImageRef& original) {
    std::erase_if(_copies, [](const Copy& other) { return other.image.expired(); });
    if (const Icon* const icon = iconShownBy(original)) _copies.push_back({icon, copy});
}

}  // namespace kalim
