// Measures an outlined text of seven characters, 72 pixels high, at scale 3.
#include <benchmark/benchmark.h>

#include <memory>

#include "bench/BenchHost.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim {
namespace {

constexpr gfx::Point corner{10, 10};
constexpr gfx::Size area{240, 80};

std::shared_ptr<MDrawText> outlinedText() {
    const auto text = MDrawText::initWithStartPoint(corner);
    text->setColor(gfx::makeColor(0.96, 0.2, 0.2));
    text->setFontSize(24);
    text->setText("前方道路施工中");
    text->setIsNewBuild(false);
    return text;
}

// What measures and lays out is thrown away each time; the font itself is known already.
void textFirst(benchmark::State& state) {
    bench::BenchHost host;
    const auto surface = host.device().makeSurface(area, 3, true);
    outlinedText()->draw(surface->context());
    for (auto _ : state)
        outlinedText()->draw(surface->context());
}
BENCHMARK(textFirst)->Unit(benchmark::kMicrosecond);

void textAgain(benchmark::State& state) {
    bench::BenchHost host;
    const auto surface = host.device().makeSurface(area, 3, true);
    const auto text = outlinedText();
    text->draw(surface->context());
    for (auto _ : state)
        text->draw(surface->context());
}
BENCHMARK(textAgain)->Unit(benchmark::kMicrosecond);

void fillTextBox(benchmark::State& state) {
    bench::BenchHost host;
    const auto surface = host.device().makeSurface(area, 3, true);
    const gfx::Rect box = outlinedText()->frame();
    surface->context().setFillColor({0.96, 0.2, 0.2, 1});
    for (auto _ : state)
        surface->context().fillRect(box);
    state.counters["points"] = box.area();
}
BENCHMARK(fillTextBox)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kalim
