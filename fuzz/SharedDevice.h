#pragma once

#include <memory>

#include "fuzz/Fuzzing.h"
#include "kalimkit/backend/cairo/CairoDevice.h"

// What the library of fonts keeps until the program ends is no finding.
extern "C" __attribute__((used)) inline const char* __lsan_default_suppressions() {
    return "leak:libfontconfig";
}

namespace kalim::fuzz {

// Made once: fonts take longer than most runs.
inline gfx::Device& device() {
    struct Holder {
        Holder() = default;
        ~Holder() {
            device.reset();
            gfx::CairoDevice::releaseFontCaches();
        }
        Holder(const Holder&) = delete;
        Holder& operator=(const Holder&) = delete;
        std::shared_ptr<gfx::Device> device = gfx::CairoDevice::make();
    };
    static Holder holder;
    return *holder.device;
}

}  // namespace kalim::fuzz
