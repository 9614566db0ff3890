#include "tests/support/TestHost.h"

#include <gtest/gtest.h>

#include <utility>

#include "kalimkit/backend/cairo/CairoDevice.h"

namespace kalim::test {

namespace {

// What the font libraries keep for the process would be reported as leaked.
class FontCaches : public testing::Environment {
public:
    void TearDown() override { gfx::CairoDevice::releaseFontCaches(); }
};

// GoogleTest owns it.
[[maybe_unused]] testing::Environment* const fontCaches =
    testing::AddGlobalTestEnvironment(new FontCaches);

}  // namespace

TestHost::Installation::Installation(std::shared_ptr<ui::Environment> environment)
    : previous(ui::Environment::install(std::move(environment))) {}

TestHost::Installation::~Installation() {
    ui::Environment::install(std::move(previous));
}

TestHost::TestHost(TestHostOptions options)
    : _device(options.device ? std::move(options.device) : gfx::CairoDevice::make()),
      _environment(std::make_shared<HeadlessEnvironment>(*_device, options.scale)),
      _installation(_environment),
      _window(options.size) {
    loop().setFrameHandler([this] { _window.display(); });
}

TestHost::~TestHost() {
    loop().setFrameHandler({});
}

}  // namespace kalim::test
