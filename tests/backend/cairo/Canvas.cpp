#include "tests/backend/cairo/Canvas.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace kalim::test {

namespace {

class CairoEnvironment : public testing::Environment {
public:
    gfx::CairoDevice& device() {
        if (!_device) _device = gfx::CairoDevice::make();
        return *_device;
    }
    void TearDown() override {
        _device.reset();
        gfx::CairoDevice::releaseFontCaches();
    }

private:
    std::shared_ptr<gfx::CairoDevice> _device;
};

// GoogleTest owns it.
CairoEnvironment* const environment =
    static_cast<CairoEnvironment*>(testing::AddGlobalTestEnvironment(new CairoEnvironment));

}  // namespace

gfx::CairoDevice& cairoDevice() {
    return environment->device();
}

Canvas::Canvas(double width, double height, double scale, bool opaque)
    : _surface(cairoDevice().makeSurface({width, height}, scale, opaque)) {}

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
