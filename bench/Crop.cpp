// What is seen of the crop editor over a photo of 12 megapixels: the frames of its opening and of a
// quarter turn, the last of which shows the turned picture at rest.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <memory>
#include <vector>

#include "bench/BenchHost.h"
#include "bench/Photo.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/crop/EditImageIntialView.h"
#include "kalimkit/editor/picker/TesselDot.h"
#include "kalimkit/editor/picker/TesselPenView.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {
namespace {

constexpr double frameTime = 1.0 / 60;
// The opening takes 0.3 s, a turn 0.4 s and 0.2 s more for the grid.
constexpr int framesOfOpening = 40;
constexpr int framesOfTurn = 40;
constexpr std::size_t cropPen = 5;

class Owner : public TesselViewControllerDelegate {
    void close() override {}
};

double processorMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return 1e3 * static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_nsec);
}

// An editor set up as windows do.
class CropStage {
public:
    CropStage(gfx::Size screen, double scale) {
        _host.environment().setScreen(
            {scale,
             {static_cast<int>(screen.width * scale), static_cast<int>(screen.height * scale)}});
        _host.environment().setUserDefault("canUseRingAnimation", false);
        _window = std::make_unique<ui::Window>(screen);
        _editor = TesselViewController::initWithSourceImageWithDelegate(
            _host.device().makeImage(bench::photo(), 1, gfx::ImageOrientation::Up), _owner);
        _editor->setForgiving(true);
        _editor->setExportsAtPictureScale(true);
        _editor->setCanvasBasis(MDrawView::usualBasis);
        _window->setRootViewController(_editor);
        rest();
    }
    ~CropStage() { _window->setRootViewController(nullptr); }

    EditImageIntialView& crop() { return *_editor->editImageInitialView(); }
    // Answers with milliseconds of the processor.
    template <class Action>
    double timed(Action action) {
        const double start = processorMilliseconds();
        action();
        _window->display();
        return processorMilliseconds() - start;
    }
    double frame() {
        return timed([&] { _host.environment().wait(frameTime); });
    }
    void open() { _window->tap(*_editor->penViews()[cropPen]); }
    void showPens() {
        _window->tap(*_editor->penView());
        rest();
    }
    void leave() {
        crop().onCropToolBarCancelBtnClicked();
        rest();
    }
    void rest() {
        _host.environment().wait(1);
        _window->display();
    }

private:
    bench::BenchHost _host;
    std::shared_ptr<Owner> _owner = std::make_shared<Owner>();
    std::unique_ptr<ui::Window> _window;
    std::shared_ptr<TesselViewController> _editor;
};

double median(std::vector<double> times) {
    const auto middle = times.begin() + static_cast<std::ptrdiff_t>(times.size() / 2);
    std::nth_element(times.begin(), middle, times.end());
    return *middle;
}

enum class Part { Opening, Turn };

// The time is that of a run's longest frame after the tap that sets it off. As the machine does
// other things as well, the counters hold medians: of the tap, and of the frame that takes longest.
void cropFrames(benchmark::State& state, gfx::Size screen, double scale, Part part) {
    CropStage stage(screen, scale);
    std::vector<double> taps;
    // Of each frame its times in all runs.
    std::vector<std::vector<double>> frames(part == Part::Opening ? framesOfOpening : framesOfTurn);
    stage.showPens();
    if (part == Part::Turn) {
        stage.open();
        stage.rest();
    }
    for (auto _ : state) {
        taps.push_back(stage.timed([&] {
            if (part == Part::Opening) return stage.open();
            stage.crop().onCropToolBarRotateBtnClicked();
        }));
        double longest = 0;
        for (std::vector<double>& times : frames) {
            times.push_back(stage.frame());
            longest = std::max(longest, times.back());
        }
        state.SetIterationTime(longest / 1e3);
        if (part == Part::Opening) {
            stage.leave();
            stage.showPens();
        }
        stage.rest();
    }
    double longest = 0;
    for (const std::vector<double>& times : frames)
        longest = std::max(longest, median(times));
    state.counters["tap"] = median(taps);
    state.counters["longest"] = longest;
}
BENCHMARK_CAPTURE(cropFrames, openingOfPhone, {390, 844}, 3, Part::Opening)
    ->UseManualTime()
    ->Iterations(8)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(cropFrames, turnOfPhone, {390, 844}, 3, Part::Turn)
    ->UseManualTime()
    ->Iterations(8)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(cropFrames, openingOfWindow, {1280, 800}, 1, Part::Opening)
    ->UseManualTime()
    ->Iterations(8)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(cropFrames, turnOfWindow, {1280, 800}, 1, Part::Turn)
    ->UseManualTime()
    ->Iterations(8)
    ->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kalim
