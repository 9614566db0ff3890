#include "tests/backend/device/Canvas.h"

#include <algorithm>

namespace kalim::test {

Canvas::Canvas(double width, double height, double scale, bool opaque)
    : _surface(testDevice().makeSurface({width, height}, scale, opaque)) {}

gfx::Rect inkBox(const gfx::Bitmap& bitmap, int alpha) {
    int left = bitmap.width();
    int top = bitmap.height();
    int right = 0;
    int bottom = 0;
    for (int y = 0; y < bitmap.height(); ++y) {
        for (int x = 0; x < bitmap.width(); ++x) {
            if (alphaAt(bitmap, x, y) < alpha) continue;
            left = std::min(left, x);
            top = std::min(top, y);
            right = std::max(right, x + 1);
            bottom = std::max(bottom, y + 1);
        }
    }
    if (right == 0) return {};
    return {left * 1.0, top * 1.0, right * 1.0 - left, bottom * 1.0 - top};
}

}  // namespace kalim::test
