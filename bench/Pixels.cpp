#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>

#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/image/GaussianBlur.h"
#include "kalimkit/image/MosaicBlocks.h"
#include "kalimkit/image/Pixelation.h"

namespace kalim {
namespace {

constexpr gfx::PixelSize photo{4000, 3000};
constexpr int level = 20;

const gfx::Bitmap& source() {
    static const gfx::Bitmap bitmap = [] {
        gfx::Bitmap noise(photo.width, photo.height);
        std::uint32_t state = 1;
        for (std::size_t i = 0; i < noise.byteCount(); ++i) {
            state = state * 1664525 + 1013904223;
            noise.data()[i] = static_cast<std::uint8_t>(state >> 24);
        }
        return noise;
    }();
    return bitmap;
}

gfx::Bitmap& target() {
    static gfx::Bitmap bitmap(photo.width, photo.height);
    return bitmap;
}

void copy12MP(benchmark::State& state) {
    source();
    target();
    for (auto _ : state) {
        std::memcpy(target().data(), source().data(), source().byteCount());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copy12MP)->Unit(benchmark::kMillisecond);

void pixelate12MP(benchmark::State& state) {
    source();
    target();
    for (auto _ : state) {
        spreadBlocks(blockColors(source(), level), level, 1, photo, target());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(pixelate12MP)->Unit(benchmark::kMillisecond);

// The definition as it reads: block by block, position by position.
void pixelateLiterally12MP(benchmark::State& state) {
    const std::size_t rowBytes = source().stride();
    const std::size_t total = source().byteCount();
    for (auto _ : state) {
        for (int x = 0; x < photo.width; x += level) {
            for (int y = 0; y < photo.height; y += level) {
                double sums[3] = {};
                int count = 0;
                for (int i = 0; i < level; ++i) {
                    for (int j = 0; j < level; ++j) {
                        const std::size_t at = static_cast<std::size_t>(x + i) * 4 +
                                               static_cast<std::size_t>(y + j) * rowBytes;
                        if (at + 3 > total) continue;
                        for (int c = 0; c < 3; ++c)
                            sums[c] += source().data()[at + c];
                        ++count;
                    }
                }
                std::uint8_t pixel[4] = {0, 0, 0, 255};
                for (int c = 0; c < 3; ++c) {
                    pixel[c] = static_cast<std::uint8_t>(std::lround(sums[c] / count));
                }
                for (int j = 0; j < level; ++j) {
                    for (int i = 0; i < level; ++i) {
                        std::memcpy(target().row(y + j) + (x + i) * 4, pixel, 4);
                    }
                }
            }
        }
        benchmark::ClobberMemory();
    }
}
BENCHMARK(pixelateLiterally12MP)->Unit(benchmark::kMillisecond);

void mosaicBlocks12MP(benchmark::State& state) {
    const auto device = gfx::CairoDevice::make();
    source();
    for (auto _ : state) {
        const MosaicBlocks blocks(*device, source(), level);
        benchmark::DoNotOptimize(blocks.isEmpty());
    }
}
BENCHMARK(mosaicBlocks12MP)->Unit(benchmark::kMillisecond);

void blur12MP(benchmark::State& state, double radius) {
    source();
    for (auto _ : state) {
        const gfx::Bitmap blurred = gaussianBlurred(source(), radius);
        benchmark::DoNotOptimize(blurred.data());
    }
}
BENCHMARK_CAPTURE(blur12MP, radius100, 100)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(blur12MP, radius5, 5)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace kalim
