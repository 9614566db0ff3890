#include <benchmark/benchmark.h>
#include <malloc.h>

#include <memory>

#include "bench/BenchHost.h"
#include "kalimkit/shapes/MDrawArrow.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/shapes/outline/ArrowOutline.h"
#include "kalimkit/tool/MUndoManager.h"

namespace kalim {
namespace {

constexpr gfx::Color red{0.96, 0.2, 0.2, 1};

std::shared_ptr<MDrawArrow> arrow() {
    const auto tool = MDrawArrow::initWithStartPoint({20, 60});
    tool->setEndPoint({100, 120});
    tool->setLineWidth(12);
    tool->setColor(gfx::makeColor(red));
    return tool;
}

void arrowWithShadow(benchmark::State& state) {
    bench::BenchHost host;
    const auto surface = host.device().makeSurface({120, 160}, 3, true);
    const auto tool = arrow();
    for (auto _ : state)
        tool->draw(surface->context());
}
BENCHMARK(arrowWithShadow)->Unit(benchmark::kMicrosecond);

// The same arrow, 100 points long, filled as the tool fills it but for the shadow.
void arrowWithoutShadow(benchmark::State& state) {
    bench::BenchHost host;
    const auto surface = host.device().makeSurface({120, 160}, 3, true);
    gfx::Context& context = surface->context();
    const auto tool = arrow();
    const auto outline = arrowOutline(100, tool->getArrowBottomHalfWidth(), tool->getTailWidth());
    for (auto _ : state) {
        gfx::GraphicsStateGuard guard(context);
        context.setFillColor(red);
        context.translate(100, 120);
        context.rotate(-2.498);
        context.beginPath();
        context.addPath(outline);
        context.fill();
    }
}
BENCHMARK(arrowWithoutShadow)->Unit(benchmark::kMicrosecond);

ToolRef boxAt(double x, double y) {
    const auto box = MDrawRect::initWithStartPoint({x, y});
    box->setEndPoint({x + 40, y + 30});
    box->setLineWidth(7);
    box->setColor(gfx::makeColor(red));
    box->setIsNewBuild(false);
    return box;
}

// Nothing is hit, so that every tool is asked.
void hitTest(benchmark::State& state) {
    bench::BenchHost host;
    const auto canvas = MDrawView::initWithFrame({0, 0, 390, 844});
    for (int i = 0; i < state.range(0); ++i)
        canvas->addTool(boxAt(i % 300, i % 700));
    for (auto _ : state)
        benchmark::DoNotOptimize(canvas->testHitTestSelectTool({380, 840}));
}
void hitTest10(benchmark::State& state) {
    hitTest(state);
}
void hitTest10000(benchmark::State& state) {
    hitTest(state);
}
BENCHMARK(hitTest10)->Arg(10);
BENCHMARK(hitTest10000)->Arg(10000);

// Records changes of one box, then undoes them all.
void undoSteps10000(benchmark::State& state) {
    constexpr int steps = 10000;
    bench::BenchHost host;
    double bytesPerStep = 0;
    for (auto _ : state) {
        state.PauseTiming();
        const auto tools = std::make_shared<ToolList>();
        auto manager = std::make_unique<MUndoManager>(tools);
        const ToolRef box = boxAt(10, 10);
        manager->addTool(box);
        manager->addToolSuccess(box);
        const auto before = mallinfo2().uordblks;
        for (int i = 0; i < steps; ++i) {
            box->setLineWidth(2 + i % 20);
            manager->addToolSuccess(box);
        }
        bytesPerStep = static_cast<double>(mallinfo2().uordblks - before) / steps;
        state.ResumeTiming();
        while (manager->undo()) {
        }
    }
    state.SetItemsProcessed(state.iterations() * steps);
    state.counters["bytes/step"] = bytesPerStep;
}
BENCHMARK(undoSteps10000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kalim
