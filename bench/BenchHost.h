#pragma once

#include <memory>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"

namespace kalim::bench {

// Installs a headless environment without an area budget for the length of a scope.
class BenchHost {
public:
    BenchHost() : _environment(std::make_shared<HeadlessEnvironment>(*_device, 3.0)) {
        _environment->setAreaBudget(std::nullopt);
        ui::Environment::install(_environment);
    }
    ~BenchHost() { ui::Environment::install(nullptr); }
    BenchHost(const BenchHost&) = delete;
    BenchHost& operator=(const BenchHost&) = delete;

    gfx::Device& device() { return *_device; }
    HeadlessEnvironment& environment() { return *_environment; }

private:
    std::shared_ptr<gfx::Device> _device = gfx::CairoDevice::make();
    std::shared_ptr<HeadlessEnvironment> _environment;
};

}  // namespace kalim::bench
