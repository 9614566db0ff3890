#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstddef>
#include <ctime>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

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

// A canvas with one selected box among so many, whose width changes.
class Changed {
public:
    explicit Changed(int toolCount) : _stage(toolCount - 1, 40), _box(TimedBox::make({160, 700})) {
        _box->setEndPoint({260, 740});
        _box->setColor(gfx::makeColor(0.96, 0.2, 0.2));
        canvas().addTool(_box);
        _stage.down({185, 700});
        _stage.up();
    }
    MDrawView& canvas() { return _stage.canvas(); }
    const TimedBox& box() const { return *_box; }
    void change() { canvas().setDrawLineWidth((_isWide = !_isWide) ? 6 : 5); }

private:
    bench::CanvasStage _stage;
    std::shared_ptr<TimedBox> _box;
    bool _isWide = false;
};

// Each change is a step. A canvas goes over all its tools before, which leaves the processor's
// caches cold: so that this is not taken for the recording's cost, one of 10,000 that is not
// recorded has a change before each step in either case. The time is that of the middle one of many
// steps.
void recordStep(benchmark::State& state, int toolCount) {
    constexpr std::size_t stepCount = 200;
    Changed other(10000);
    Changed recorded(toolCount);
    const auto recorder = std::make_shared<Recorder>(recorded.canvas());
    recorded.canvas().setStepListener(recorder);
    recorded.canvas().setDrawViewdelegate(recorder);
    for (auto _ : state) {
        std::vector<double> times;
        while (times.size() < stepCount) {
            other.change();
            recorded.change();
            times.push_back(recorder->doneAt - recorded.box().recordedAt);
        }
        std::ranges::nth_element(times, times.begin() + stepCount / 2);
        state.SetIterationTime(times[stepCount / 2]);
    }
    if (recorder->stepCount() != stepCount) state.SkipWithError("not every step was recorded");
}
BENCHMARK_CAPTURE(recordStep, of10, 10)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(recordStep, of10000, 10000)
    ->UseManualTime()
    ->Iterations(1)
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace kalim
