// A photo of 12 megapixels with ten tools, as it leaves the editor.
#include <benchmark/benchmark.h>

#include "bench/CanvasStage.h"
#include "kalimkit/codec/Encode.h"

namespace kalim {
namespace {

constexpr int toolCount = 10;
constexpr double side = 100;

void encode(benchmark::State& state, const gfx::Bitmap& pixels) {
    codec::Bytes bytes;
    if (const auto problem = codec::encodePng(pixels, bytes)) {
        state.SkipWithError(problem->c_str());
    }
    benchmark::DoNotOptimize(bytes.data());
}

void exportAsPng(benchmark::State& state) {
    bench::CanvasStage stage(toolCount, side);
    for (auto _ : state)
        encode(state, *stage.canvas().exportImageAtPictureScale()->pixels());
}
BENCHMARK(exportAsPng)->Unit(benchmark::kMillisecond);

void encodePngAlone(benchmark::State& state) {
    bench::CanvasStage stage(toolCount, side);
    const gfx::BitmapRef pixels = stage.canvas().exportImageAtPictureScale()->pixels();
    for (auto _ : state)
        encode(state, *pixels);
}
BENCHMARK(encodePngAlone)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kalim
