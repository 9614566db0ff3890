#include "kalimkit/image/BlurRows.h"

namespace kalim {

namespace {

constexpr std::size_t channels = 4;
constexpr int blendRounding = blendSteps * finePerLevel / 2;

}  // namespace

void addRow(const std::uint8_t* bytes, std::uint16_t* sums, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        sums[i] = static_cast<std::uint16_t>(sums[i] + bytes[i]);
}

void averageCells(const std::uint16_t* sums, int side, float* cells, std::size_t sumCount) {
    const std::size_t step = static_cast<std::size_t>(side) * channels;
    const float share = 1.0F / static_cast<float>(side * side);
    for (std::size_t begin = 0; begin < sumCount; begin += step, cells += channels) {
        std::uint32_t total[channels] = {};
        for (std::size_t i = begin; i < begin + step; i += channels) {
            for (std::size_t c = 0; c < channels; ++c)
                total[c] += sums[i + c];
        }
        for (std::size_t c = 0; c < channels; ++c)
            cells[c] = static_cast<float>(total[c]) * share;
    }
}

// Compiled for newer processors, too, and chosen when the program starts; the sanitizers do not get
// along with that. Not for those that multiply and add in one step, which would round differently.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__)
[[gnu::target_clones("avx2", "default")]]
#endif
void addWeighted(float* target, const float* row, float weight, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        target[i] += row[i] * weight;
}

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__)
[[gnu::target_clones("avx2", "default")]]
#endif
void addWeighted(float* target, const float* a, const float* b, float weight, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        target[i] += (a[i] + b[i]) * weight;
}

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && \
    !defined(__SANITIZE_ADDRESS__)
[[gnu::target_clones("avx2", "default")]]
#endif
void blendRows(const std::uint16_t* above, const std::uint16_t* below, int part,
               std::uint8_t* target, std::size_t count) {
    // 255 levels of 8 steps, 32 times and rounded, just fit into 16 bits.
    const auto lower = static_cast<std::uint16_t>(part);
    const auto upper = static_cast<std::uint16_t>(blendSteps - part);
    for (std::size_t i = 0; i < count; ++i) {
        const auto sum =
            static_cast<std::uint16_t>(above[i] * upper + below[i] * lower + blendRounding);
        target[i] = static_cast<std::uint8_t>(sum / (blendSteps * finePerLevel));
    }
}

}  // namespace kalim
