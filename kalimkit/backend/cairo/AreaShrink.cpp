#include "kalimkit/backend/cairo/AreaShrink.h"

#include <algorithm>
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

// Adds up the source row into one sum for each target column.
void sumRow(const std::uint8_t* pixel, const std::vector<Portion>& columns,
            std::vector<Floats>& sums) {
    Floats sum{};
    Floats* to = sums.data();
    for (const Portion& column : columns) {
        Bytes bytes;
        std::memcpy(&bytes, pixel, sizeof bytes);
        pixel += sizeof bytes;
        const Floats value =
            __builtin_convertvector(__builtin_convertvector(bytes, Integers), Floats);
        sum += value * column.share;
        if (!column.isLast) continue;
        *to++ = sum;
        sum = value * (1 - column.share);
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
    Bitmap result(target.width, target.height);
    const std::vector<Portion> columns = portions(source.width(), target.width);
    const std::vector<Portion> rows = portions(source.height(), target.height);
    const auto area = static_cast<float>(static_cast<double>(source.width()) / target.width *
                                         source.height() / target.height);
    std::vector<Floats> sums(static_cast<std::size_t>(target.width));
    std::vector<Floats> total(sums.size());
    for (int y = 0; y < source.height(); ++y) {
        const Portion& row = rows[static_cast<std::size_t>(y)];
        sumRow(source.row(y), columns, sums);
        addScaled(total, sums, row.share);
        if (!row.isLast) continue;
        writeRow(result.row(row.index), total, area);
        if (row.share < 1) addScaled(total, sums, 1 - row.share);
    }
    return result;
}

}  // namespace kalim::gfx
