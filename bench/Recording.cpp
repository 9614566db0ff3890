#include <benchmark/benchmark.h>

#include <ctime>
#include <filesystem>
#include <memory>
#include <string>

#include "bench/CanvasStage.h"
#include "kalimkit/canvas/MDrawViewDelegate.h"
#include "kalimkit/canvas/StepListener.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/store/SqliteWorkStore.h"

namespace kalim {
namespace {

namespace fs = std::filesystem;

double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// A box that notes when its new state is on its history: all that comes between that and the news
// that there is something to undo is the recording.
class TimedBox : public MDrawRect {
public:
    static std::shared_ptr<TimedBox> make(gfx::Point start) {
        return std::static_pointer_cast<TimedBox>(makeToolAt<TimedBox>(start));
    }
    bool updatefeature() override {
        const bool isNew = MDrawRect::updatefeature();
        recordedAt = processorSeconds();
        return isNew;
    }
    double recordedAt = 0;
};

// Records into a database of its own, as the window does.
struct Recorder : StepListener, MDrawViewDelegate {
    explicit Recorder(MDrawView& canvas)
        : folder(fs::temp_directory_path() / "kalim-bench-works"),
          store((folder / "works.sqlite").string()),
          work(store.begin({"bench", {}, {}, canvas.stepsSetUp()})) {}
    ~Recorder() override {
        store.end(work);
        fs::remove_all(folder);
    }
    void canvasDidStep(const std::string& step) override { store.record(work, step); }
    void canvasDidRestart() override {}
    void canUndoStateChangedCanRedo(bool /*canUndo*/, bool /*canRedo*/) override {
        doneAt = processorSeconds();
    }
    std::size_t stepCount() {
        std::size_t count = 0;
        store.list([&](const std::vector<ui::WorkSummary>& works) { count = works.at(0).steps; });
        return count;
    }

    fs::path folder;
    store::SqliteWorkStore store;
    std::string work;
    double doneAt = 0;
};

// The width of one box among so many changes, which is a step each.
void recordStep(benchmark::State& state, int toolCount) {
    bench::CanvasStage stage(toolCount - 1, 40);
    MDrawView& canvas = stage.canvas();
    const auto box = TimedBox::make({160, 630});
    box->setEndPoint({260, 670});
    box->setColor(gfx::makeColor(0.96, 0.2, 0.2));
    canvas.addTool(box);
    stage.down({185, 630});
    stage.up();
    const auto recorder = std::make_shared<Recorder>(canvas);
    canvas.setStepListener(recorder);
    canvas.setDrawViewdelegate(recorder);
    bool isWide = false;
    for (auto _ : state) {
        canvas.setDrawLineWidth((isWide = !isWide) ? 6 : 5);
        state.SetIterationTime(recorder->doneAt - box->recordedAt);
    }
    if (recorder->stepCount() != static_cast<std::size_t>(state.iterations())) {
        state.SkipWithError("not every step was recorded");
    }
}
BENCHMARK_CAPTURE(recordStep, of10, 10)
    ->UseManualTime()
    ->Iterations(300)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(recordStep, of10000, 10000)
    ->UseManualTime()
    ->Iterations(300)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kalim
