#include "kalimkit/backend/cairo/AreaShrink.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <vector>

namespace kalim::gfx {

namespace {

// Where a source row or column goes: `share` of it to the target `index`, the rest to the next.
struct Portion {
    int index;
    float share;
    // True for the last one that has a share in the index.
    bool isLast;
};

std::vector<Portion> portions(int source, int target) {
    const double factor = static_cast<double>(source) / target;
    std::vector<Portion> result(static_cast<std::size_t>(source));
    int index = 0;
    for (int i = 0; i < source; ++i) {
        while (index + 1 < target && (index + 1) * factor <= i)
            ++index;
        const double inside = index + 1 < target ? (index + 1) * factor - i : 1;
        const bool isLast = i + 1 == source || (index + 1 < target && inside <= 1);
        result[static_cast<std::size_t>(i)] = {index, static_cast<float>(std::min(inside, 1.0)),
                                               isLast};
    }
    return result;
}

// The four components of a pixel in one register; the compiler alone does not find this.
using Bytes [[gnu::vector_size(4)]] = std::uint8_t;
using Integers [[gnu::vector_size(16)]] = std::int32_t;
using Floats [[gnu::vector_size(16)]] = float;

// Two interleavings with zeros widen the bytes; a conversion would go through them one by one.
Floats load(const std::uint8_t* pixel) {
    using Sixteen [[gnu::vector_size(16)]] = std::uint8_t;
    using Eight [[gnu::vector_size(16)]] = std::uint16_t;
    std::int32_t packed = 0;
    std::memcpy(&packed, pixel, sizeof packed);
    const auto bytes = reinterpret_cast<Sixteen>(Integers{packed});
    const auto words = reinterpret_cast<Eight>(__builtin_shufflevector(
        bytes, Sixteen{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
    const auto integers = reinterpret_cast<Integers>(
        __builtin_shufflevector(words, Eight{}, 0, 8, 1, 9, 2, 10, 3, 11));
    return __builtin_convertvector(integers, Floats);
}

// Additions to one sum wait for each other; those to the sums of several rows do not.
constexpr std::size_t rowsTogether = 4;
using Rows = std::array<const std::uint8_t*, rowsTogether>;
using RowSums = std::array<std::vector<Floats>, rowsTogether>;

// Adds up each of the source rows into one sum for each target column.
void sumRows(Rows pixels, const std::vector<Portion>& columns, RowSums& sums) {
    std::array<Floats, rowsTogether> sum{};
    std::size_t target = 0;
    for (const Portion& column : columns) {
        std::array<Floats, rowsTogether> values{};
        for (std::size_t i = 0; i < rowsTogether; ++i) {
            values[i] = load(pixels[i]);
            pixels[i] += sizeof(Bytes);
            sum[i] += values[i] * column.share;
        }
        if (!column.isLast) continue;
        for (std::size_t i = 0; i < rowsTogether; ++i) {
            sums[i][target] = sum[i];
            sum[i] = values[i] * (1 - column.share);
        }
        ++target;
    }
}

void addScaled(std::vector<Floats>& total, const std::vector<Floats>& sums, float share) {
    for (std::size_t i = 0; i < total.size(); ++i)
        total[i] += sums[i] * share;
}

void writeRow(std::uint8_t* row, std::vector<Floats>& total, float area) {
    const float factor = 1 / area;
    for (Floats& sum : total) {
        const Bytes bytes =
            __builtin_convertvector(__builtin_convertvector(sum * factor + 0.5F, Integers), Bytes);
        std::memcpy(row, &bytes, sizeof bytes);
        row += sizeof bytes;
        sum = Floats{};
    }
}

}  // namespace

Bitmap areaShrink(const Bitmap& source, PixelSize target) {
    assert(!target.isEmpty() && target.width <= source.width() && target.height <= source.height());
    Bitmap result = Bitmap::unwritten(target.width, target.height);
    const std::vector<Portion> columns = portions(source.width(), target.width);
    const std::vector<Portion> rows = portions(source.height(), target.height);
    const auto area = static_cast<float>(static_cast<double>(source.width()) / target.width *
                                         source.height() / target.height);
    std::vector<Floats> total(static_cast<std::size_t>(target.width));
    RowSums sums;
    sums.fill(total);
    for (int first = 0; first < source.height(); first += static_cast<int>(rowsTogether)) {
        const int count = std::min(static_cast<int>(rowsTogether), source.height() - first);
        Rows pixels;
        for (int i = 0; i < static_cast<int>(rowsTogether); ++i)
            pixels[static_cast<std::size_t>(i)] = source.row(first + std::min(i, count - 1));
        sumRows(pixels, columns, sums);
        for (int i = 0; i < count; ++i) {
            const Portion& row =
                rows[static_cast<std::size_t>(first) + static_cast<std::size_t>(i)];
            const std::vector<Floats>& sum = sums[static_cast<std::size_t>(i)];
            addScaled(total, sum, row.share);
            if (!row.isLast) continue;
            writeRow(result.row(row.index), total, area);
            if (row.share < 1) addScaled(total, sum, 1 - row.share);
        }
    }
    return result;
}

}  // namespace kalim::gfx
