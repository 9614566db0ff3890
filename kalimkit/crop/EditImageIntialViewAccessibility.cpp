#include <cmath>
#include <string>

#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

std::vector<ui::AccessibilityElement> EditImageIntialView::accessibilityElements() {
    if (!_cropGridView || !_originalImage) return {};
    gfx::PixelSize pixels = _originalImage->pixelSize();
    if (_currentRotationOrientation % 2 != 0) pixels = {pixels.height, pixels.width};
    const gfx::Rect share = cropShare();
    // The pixels that the frame touches, but for what the arithmetic leaves beside it.
    const auto length = [](double from, double part, int whole) {
        constexpr double tolerance = 1e-6;
        return std::to_string(std::lround(std::ceil((from + part) * whole - tolerance) -
                                          std::floor(from * whole + tolerance)));
    };
    return {{.key = 1,
             .role = ui::AccessibilityRole::Image,
             .label = ui::Environment::current().localizedString("裁剪框"),
             .value = length(share.minX(), share.size.width, pixels.width) + " × " +
                      length(share.minY(), share.size.height, pixels.height),
             .frame = _cropFrame}};
}

}  // namespace kalim
