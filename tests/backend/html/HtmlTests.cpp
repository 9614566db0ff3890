#include <gtest/gtest.h>

#include "kalimkit/backend/html/HtmlDevice.h"
#include "tests/backend/device/Canvas.h"

// What every device must do, as a module of a page: tests/browser/device.mjs runs it.

namespace {

// As tests/browser/device.mjs numbers them.
enum class Browser { Chromium, Firefox, WebKit };
Browser current = Browser::Chromium;

}  // namespace

namespace kalim::test {

gfx::Device& testDevice() {
    static gfx::HtmlDevice device;
    return device;
}

// Browsers take short cuts, above all where a shadow is hardly blurred, and resample images that
// cast one in another way.
double shadowTolerance(double sigma) {
    const bool isFirefox = current == Browser::Firefox;
    if (sigma == 0) return isFirefox ? 10 : 8;
    if (sigma < 1) return 45;
    return isFirefox ? 6 : 5;
}

// Firefox counts advances in 64ths of a pixel.
double widthTolerance() {
    return current == Browser::Firefox ? 0.11 : 0.05;
}

double clipTolerance() {
    return current == Browser::WebKit ? 3 : 0;
}

bool castsShadowsOfOutlinedText() {
    return current != Browser::WebKit;
}

// Firefox 140 does not, Firefox 153 does.
bool keepsLongPictures() {
    return current != Browser::Firefox;
}

}  // namespace kalim::test

// The tests' results are printed as always.
__attribute__((export_name("run"))) int run(int browser) {
    current = static_cast<Browser>(browser);
    int count = 1;
    char name[] = "tests-html";
    char* arguments[] = {name, nullptr};
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
