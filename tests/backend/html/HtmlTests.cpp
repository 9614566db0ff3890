#include <gtest/gtest.h>

#include "kalimkit/backend/html/HtmlDevice.h"
#include "tests/backend/device/Canvas.h"

// What every device must do, as a module of a page: tests/browser/device.mjs runs it.

namespace kalim::test {

gfx::Device& testDevice() {
    static gfx::HtmlDevice device;
    return device;
}

// Browsers take short cuts, above all where a shadow is hardly blurred, and resample images that
// cast one in another way.
double shadowTolerance(double sigma) {
    if (sigma == 0) return 8;
    return sigma < 1 ? 45 : 5;
}

}  // namespace kalim::test

// The tests' results are printed as always.
__attribute__((export_name("run"))) int run() {
    int count = 1;
    char name[] = "tests-html";
    char* arguments[] = {name, nullptr};
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
