// What a finger feels: frames at 1170x2532 pixels over a photo of 12 megapixels.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

#include "bench/CanvasStage.h"
#include "kalimkit/canvas/ToolType.h"

namespace kalim {
namespace {

using bench::CanvasStage;

constexpr double smallSide = 100;
constexpr double largeSide = 200;

// The last stage is kept between repetitions, because thousands of tools take a while to add. One
// lives at a time: it is the current environment.
CanvasStage& stageOf(int toolCount, double side = smallSide) {
    static std::unique_ptr<CanvasStage> stage;
    static int itsToolCount = 0;
    static double itsSide = 0;
    if (!stage || itsToolCount != toolCount || itsSide != side) {
        stage = nullptr;
        stage = std::make_unique<CanvasStage>(toolCount, side);
        itsToolCount = toolCount;
        itsSide = side;
    }
    return *stage;
}

// ---- dragging

void dragFrame(benchmark::State& state, int toolCount, double side) {
    CanvasStage& stage = stageOf(toolCount, side);
    stage.grabBoxOnTop();
    stage.dragOn();
    if (!stage.isDragging()) state.SkipWithError("nothing is dragged");
    for (auto _ : state)
        stage.dragOn();
    state.counters["pixels"] = static_cast<double>(stage.window().lastCost().pixels);
    stage.up();
    stage.undo();
}
BENCHMARK_CAPTURE(dragFrame, of10, 10, smallSide)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(dragFrame, of100, 100, smallSide)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(dragFrame, of1000, 1000, smallSide)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(dragFrame, of10000, 10000, smallSide)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(dragFrame, large, 10, largeSide)->Unit(benchmark::kMicrosecond);

// As many bytes as the pixels that a frame of the large box's drag draws.
void copyDamageOfLarge(benchmark::State& state) {
    CanvasStage& stage = stageOf(10, largeSide);
    stage.grabBoxOnTop();
    stage.dragOn();
    const auto bytes = static_cast<std::size_t>(stage.window().lastCost().pixels) * 4;
    stage.up();
    stage.undo();
    const std::vector<std::uint8_t> from(bytes, 1);
    std::vector<std::uint8_t> to(bytes);
    for (auto _ : state) {
        std::memcpy(to.data(), from.data(), bytes);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copyDamageOfLarge)->Unit(benchmark::kMicrosecond);

// ---- drawing by hand

// The path of a stroke that fills the screen line by line, as writing does, and crosses nothing.
gfx::Point pointOfWriting(int index) {
    constexpr int pointsPerLine = 90;
    const int line = index / pointsPerLine;
    const int along = index % pointsPerLine;
    return {15.0 + 4 * (line % 2 == 0 ? along : pointsPerLine - 1 - along), 166.0 + 3.9 * line};
}

void beginWriting(CanvasStage& stage, int points) {
    stage.canvas().clearTools();
    stage.canvas().beginDrawingForTypeWithDrawType(ToolType::Freehand, 0);
    stage.canvas().setDrawLineWidth(2);
    stage.down(pointOfWriting(0));
    for (int i = 1; i <= points; ++i)
        stage.move(pointOfWriting(i));
}

// 20 points are added at a time, and the stroke is begun anew when it has grown by a fifth.
void addedPoints(benchmark::State& state, int points) {
    constexpr int batch = 20;
    CanvasStage& stage = stageOf(2);
    beginWriting(stage, points);
    int reached = points;
    for (auto _ : state) {
        if (reached + batch > points * 6 / 5) {
            state.PauseTiming();
            stage.up();
            beginWriting(stage, points);
            reached = points;
            state.ResumeTiming();
        }
        for (int i = 0; i < batch; ++i)
            stage.move(pointOfWriting(++reached));
    }
    if (!stage.canvas().handingTool()) state.SkipWithError("nothing is drawn");
    state.counters["pixels"] = static_cast<double>(stage.window().lastCost().pixels);
    stage.up();
}
BENCHMARK_CAPTURE(addedPoints, at100, 100)->Iterations(90)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(addedPoints, at10000, 10000)->Iterations(90)->Unit(benchmark::kMicrosecond);

// ---- steps among many tools

// A line is drawn; what is timed is the lifting of the finger, or what follows it.
enum class Step { Finish, Undo, Redo };

void lineStep(benchmark::State& state, int toolCount, Step timed) {
    CanvasStage& stage = stageOf(toolCount);
    stage.canvas().selectNone();
    stage.canvas().beginDrawingForTypeWithDrawType(ToolType::Line, 0);
    const auto play = [&](Step step, auto action) {
        if (step == timed) state.ResumeTiming();
        action();
        if (step == timed) state.PauseTiming();
    };
    for (auto _ : state) {
        state.PauseTiming();
        stage.down({200, 640});
        stage.move({250, 645});
        stage.move({300, 648});
        play(Step::Finish, [&] { stage.up(); });
        play(Step::Undo, [&] { stage.undo(); });
        play(Step::Redo, [&] { stage.redo(); });
        stage.undo();
        state.ResumeTiming();
    }
    if (stage.canvas().tools().size() != static_cast<std::size_t>(toolCount)) {
        state.SkipWithError("the line is not undone");
    }
}
BENCHMARK_CAPTURE(lineStep, finish10, 10, Step::Finish)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(lineStep, undo10, 10, Step::Undo)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(lineStep, redo10, 10, Step::Redo)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(lineStep, finish10000, 10000, Step::Finish)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(lineStep, undo10000, 10000, Step::Undo)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(lineStep, redo10000, 10000, Step::Redo)->Unit(benchmark::kMicrosecond);

// Touch-down and first move on the tool that is asked last.
void selectTool(benchmark::State& state, int toolCount) {
    CanvasStage& stage = stageOf(toolCount);
    stage.canvas().selectNone();
    for (auto _ : state) {
        stage.pressLoneBox();
        stage.pullLoneBox();
        state.PauseTiming();
        if (!stage.canvas().hasSelectedTools()) state.SkipWithError("nothing is selected");
        stage.releaseLoneBox();
        state.ResumeTiming();
    }
}
BENCHMARK_CAPTURE(selectTool, of10, 10)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(selectTool, of10000, 10000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kalim
