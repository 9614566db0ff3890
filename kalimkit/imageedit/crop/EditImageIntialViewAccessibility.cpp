#include <cmath>
#include <string>

#include "kalimkit/imageedit/crop/EditImageIntialView.h"
#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

std::vector<ui::AccessibilityElement> EditImageIntialView::accessibilityElements() {
    if (!_cropGridView || !_originalImage) return {};
    gfx::PixelSize pixels = _originalImage->pixelSize();
    if (_currentRotationOrientation % 2 != 0) pixels = {pixels.height, pixels.width};
    const gfx::Size share = cropShare().size;
    const auto length = [](double part, int whole) {
        return std::to_string(std::lround(part * whole));
    };
    return {
        {.key = 1,
         .role = ui::AccessibilityRole::Image,
         .label = ui::Environment::current().localizedString("裁剪框"),
         .value = length(share.width, pixels.width) + " × " + length(share.height, pixels.height),
         .frame = _cropFrame}};
}

}  // namespace kalim
