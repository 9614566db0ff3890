// Measures what is done to a text of 100,000 characters, each with the frame that it leads to,
// beside shaping the text once.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <string>

#include "bench/CanvasStage.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim {
namespace {

constexpr int characterCount = 100'000;
constexpr int textType = 3;
constexpr gfx::Point onText{60, 200};

// Words, hanzi and now and then a paragraph's end.
std::string longText(bool isOneParagraph = false) {
    std::string text;
    // Twenty characters at a time, no two of them alike.
    for (int i = 10'000; i < 10'000 + characterCount / 20; ++i)
        text += std::to_string(i) + (i % 50 == 49 ? " and a next one\n" : " words and 八百字. ");
    if (isOneParagraph) std::ranges::replace(text, '\n', ' ');
    return text;
}

// A text that is being typed.
class LongTextStage {
public:
    explicit LongTextStage(bool isOneParagraph = false) {
        canvas().setForgiving(true);
        canvas().beginDrawingForTypeWithDrawType(textType, 0);
        _stage.down(onText);
        _stage.up();
        if (!field()) std::abort();
        field()->insertText(longText(isOneParagraph));
        show();
    }

    MDrawView& canvas() { return _stage.canvas(); }
    std::shared_ptr<ui::TextView> field() { return ui::TextView::focusedIn(_stage.window()); }
    void show() { _stage.move(onText); }
    void type() {
        field()->insertText("x");
        show();
    }
    void end() {
        canvas().finishEditText();
        show();
    }

    bench::CanvasStage _stage{2, 40};
};

void longTextShaped(benchmark::State& state) {
    const std::string text = longText();
    const gfx::Font font{.family = "", .size = 16, .bold = true};
    for (auto _ : state) {
        state.PauseTiming();
        // One that has not shaped any of it before.
        bench::BenchHost host;
        host.device().advances("x", font);
        state.ResumeTiming();
        std::size_t begin = 0;
        while (begin < text.size()) {
            const std::size_t end = std::min(text.find('\n', begin), text.size());
            benchmark::DoNotOptimize(
                host.device().advances(std::string_view(text).substr(begin, end - begin), font));
            begin = end + 1;
        }
    }
}
BENCHMARK(longTextShaped)->Unit(benchmark::kMillisecond);

void longTextTyped(benchmark::State& state) {
    LongTextStage stage;
    for (auto _ : state)
        stage.type();
}
BENCHMARK(longTextTyped)->Unit(benchmark::kMillisecond);

void longTextTypedAmid(benchmark::State& state) {
    LongTextStage stage;
    stage.field()->setSelection({characterCount / 2, characterCount / 2});
    for (auto _ : state)
        stage.type();
}
BENCHMARK(longTextTypedAmid)->Unit(benchmark::kMillisecond);

void longTextTypedAmidOne(benchmark::State& state) {
    LongTextStage stage(true);
    stage.field()->setSelection({characterCount / 2, characterCount / 2});
    for (auto _ : state)
        stage.type();
}
BENCHMARK(longTextTypedAmidOne)->Unit(benchmark::kMillisecond);

void longTextEnded(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto stage = std::make_unique<LongTextStage>();
        state.ResumeTiming();
        stage->end();
        state.PauseTiming();
        stage.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(longTextEnded)->Unit(benchmark::kMillisecond)->Iterations(3);

void longTextDragged(benchmark::State& state) {
    LongTextStage stage;
    stage.end();
    stage._stage.down(onText);
    double step = 0;
    for (auto _ : state)
        stage._stage.move(onText + gfx::Point{1, step += 1});
}
BENCHMARK(longTextDragged)->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace
}  // namespace kalim
