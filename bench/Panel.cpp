// Measures the opening of the panel at 1170x2532 pixels over a photo of 12 megapixels.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

#include "bench/BenchHost.h"
#include "bench/Photo.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {
namespace {

constexpr gfx::Size screen{390, 844};
constexpr double frameTime = 1.0 / 60;
// The opening takes 0.2 s, then the panel settles.
constexpr int framesOfOpening = 12;

class Owner : public TesselViewControllerDelegate {
    void close() override {}
};

void panelOpening(benchmark::State& state) {
    bench::BenchHost host;
    host.environment().setUserDefault("canUseRingAnimation", false);
    ui::Window window(screen);
    const auto owner = std::make_shared<Owner>();
    const auto editor = TesselViewController::initWithSourceImageWithDelegate(
        host.device().makeImage(bench::photo(), 1, gfx::ImageOrientation::Up), owner);
    window.setRootViewController(editor);
    const auto rest = [&] {
        host.environment().wait(1);
        window.display();
    };
    rest();
    double pixels = 0;
    for (auto _ : state) {
        state.PauseTiming();
        editor->clickAtPenView();
        window.display();
        pixels = 0;
        state.ResumeTiming();
        for (int frame = 0; frame < framesOfOpening; ++frame) {
            host.environment().wait(frameTime);
            window.display();
            pixels += static_cast<double>(window.lastCost().pixels);
        }
        state.PauseTiming();
        rest();
        if (!editor->showPanel()) state.SkipWithError("the panel is not open");
        editor->clickAtConfirm();
        rest();
        state.ResumeTiming();
    }
    state.counters["pixels"] = pixels / framesOfOpening;
    window.setRootViewController(nullptr);
}
BENCHMARK(panelOpening)->Unit(benchmark::kMicrosecond);

// As many frames of the whole screen as the opening has.
void copyScreens(benchmark::State& state) {
    constexpr std::size_t bytes = std::size_t{1170} * 2532 * 4;
    const std::vector<std::uint8_t> from(bytes, 1);
    std::vector<std::uint8_t> to(bytes);
    for (auto _ : state) {
        for (int frame = 0; frame < framesOfOpening; ++frame) {
            std::memcpy(to.data(), from.data(), bytes);
            benchmark::ClobberMemory();
        }
    }
}
BENCHMARK(copyScreens)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kalim
