#include "kalimkit/codec/JpegBlock.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace kalim::codec {

namespace {

constexpr std::size_t side = DCTSIZE;

using Matrix = std::array<float, DCTSIZE2>;

// The discrete cosine transform of 8 samples: a row for each frequency. Its inverse is its
// transpose.
const Matrix& waves() {
    static const Matrix made = [] {
        Matrix rows{};
        for (std::size_t wave = 0; wave < side; ++wave) {
            const double height = std::sqrt((wave == 0 ? 1.0 : 2.0) / side);
            for (std::size_t at = 0; at < side; ++at) {
                const double angle =
                    static_cast<double>((2 * at + 1) * wave) * (std::numbers::pi / (2 * side));
                rows[side * wave + at] = static_cast<float>(height * std::cos(angle));
            }
        }
        return rows;
    }();
    return made;
}

Matrix transposed(const Matrix& matrix) {
    Matrix result;
    for (std::size_t y = 0; y < side; ++y) {
        for (std::size_t x = 0; x < side; ++x)
            result[side * x + y] = matrix[side * y + x];
    }
    return result;
}

Matrix product(const Matrix& left, const Matrix& right) {
    Matrix result{};
    for (std::size_t y = 0; y < side; ++y) {
        for (std::size_t i = 0; i < side; ++i) {
            for (std::size_t x = 0; x < side; ++x)
                result[side * y + x] += left[side * y + i] * right[side * i + x];
        }
    }
    return result;
}

}  // namespace

void showBlock(const JCOEF* coefficients, const BlockTable& table, BlockSamples& samples) {
    static const Matrix spread = transposed(waves());
    Matrix frequencies;
    for (std::size_t i = 0; i < DCTSIZE2; ++i)
        frequencies[i] = static_cast<float>(coefficients[i] * table[i]);
    samples = product(product(spread, frequencies), waves());
}

void makeBlock(const BlockSamples& samples, const BlockTable& table, JCOEF* coefficients) {
    // No code stands for more.
    constexpr float most = 1023;
    static const Matrix spread = transposed(waves());
    const Matrix frequencies = product(product(waves(), samples), spread);
    for (std::size_t i = 0; i < DCTSIZE2; ++i) {
        // A damaged file may have a step of nothing.
        const float step = std::max<float>(table[i], 1);
        const float steps = std::clamp(frequencies[i] / step, -most, most);
        coefficients[i] = static_cast<JCOEF>(steps < 0 ? steps - 0.5F : steps + 0.5F);
    }
}

// Mirroring changes the sign of every second frequency, the odd ones.
void turnBlock(const JCOEF* from, const PixelMap& map, JCOEF* to) {
    const bool mirrorsAcross = map.xx + map.xy < 0;
    const bool mirrorsDown = map.yx + map.yy < 0;
    for (std::size_t y = 0; y < side; ++y) {
        for (std::size_t x = 0; x < side; ++x) {
            const JCOEF value = from[map.exchangesSides() ? side * x + y : side * y + x];
            const bool changesSign = (mirrorsAcross && x % 2 == 1) != (mirrorsDown && y % 2 == 1);
            to[side * y + x] = static_cast<JCOEF>(changesSign ? -value : value);
        }
    }
}

}  // namespace kalim::codec
