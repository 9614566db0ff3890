#include "kalimkit/backend/cairo/MaskBlur.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace kalim::gfx {

namespace {

constexpr double largestExactSigma = 6;
constexpr int blockSide = Mask::blockSide;

// Half of a symmetric kernel in 256ths, the centre first: the Gaussian's integral over each pixel.
// Sums from the rim inwards are rounded, not single weights, so that the blur of a straight edge is
// right to half a level everywhere.
std::vector<std::uint16_t> gaussianKernel(double sigma) {
    const auto beyond = [&](int pixel) {
        return std::lround(128 * std::erfc((pixel - 0.5) / (sigma * std::numbers::sqrt2)));
    };
    std::vector<std::uint16_t> kernel{static_cast<std::uint16_t>(256 - 2 * beyond(1))};
    for (int i = 1; beyond(i) > 0; ++i) {
        kernel.push_back(static_cast<std::uint16_t>(beyond(i) - beyond(i + 1)));
    }
    return kernel;
}

// A block of pixels in one register; the compiler alone does not find this.
using Bytes [[gnu::vector_size(16)]] = std::uint8_t;
using Words [[gnu::vector_size(32)]] = std::uint16_t;
static_assert(sizeof(Bytes) == blockSide);

inline Bytes load(const std::uint8_t* pixels) {
    Bytes bytes;
    std::memcpy(&bytes, pixels, sizeof bytes);
    return bytes;
}

// The symmetric convolution of one block. `step` leads from a pixel to the next in the direction of
// the kernel; all pixels in its reach are there to be read.
#if defined(__x86_64__)
[[gnu::target_clones("arch=x86-64-v3", "default")]]
#endif
void convolveBlock(const std::uint8_t* centre, std::ptrdiff_t step, const std::uint16_t* kernel,
                   int reach, std::uint8_t* result) {
    constexpr std::uint16_t half = 128;
    Words sums = __builtin_convertvector(load(centre), Words) * kernel[0] + half;
    for (int i = 1; i <= reach; ++i) {
        sums += (__builtin_convertvector(load(centre - step * i), Words) +
                 __builtin_convertvector(load(centre + step * i), Words)) *
                kernel[i];
    }
    const Bytes bytes = __builtin_convertvector(sums >> 8, Bytes);
    std::memcpy(result, &bytes, sizeof bytes);
}

// The exact blur: a horizontal pass into the scratch, a vertical pass back.
class GaussianBlur {
public:
    GaussianBlur(const Mask& mask, double sigma, std::vector<std::uint8_t>& scratch)
        : _mask(mask),
          _kernel(gaussianKernel(sigma)),
          _reach(static_cast<int>(_kernel.size()) - 1),
          _blocksBetween(mask.columns, mask.rows),
          _line(static_cast<std::size_t>(mask.stride()) + 2 * static_cast<std::size_t>(_reach)) {
        // Rows of zeros above and below, as far as the kernel may look.
        const std::ptrdiff_t margin = mask.stride() * _reach;
        const std::size_t needed = mask.byteCount() + 2 * static_cast<std::size_t>(margin);
        if (scratch.size() < needed) scratch.resize(needed);
        _between = {scratch.data() + margin, mask.columns, mask.rows};
    }

    BlockGrid run() {
        const BlockGrid source = BlockGrid::of(_mask);
        for (int y = 0; y < _mask.rows; ++y) {
            if (!source.isRowEmpty(y)) blurRow(y, source);
        }
        BlockGrid result(_mask.columns, _mask.rows);
        for (int column = 0; column < _mask.columns; ++column)
            blurColumn(column, result);
        _blocksBetween.clear(_between);
        return result;
    }

private:
    void blurRow(int y, const BlockGrid& source) {
        std::uint8_t* const line = _line.data() + _reach;
        std::memcpy(line, _mask.row(y), static_cast<std::size_t>(_mask.stride()));
        const int blocks = (_reach + blockSide - 1) / blockSide;
        // Past this column nothing occupied is in reach.
        int until = -1;
        for (int column = -blocks; column < _mask.columns; ++column) {
            const int ahead = column + blocks;
            if (ahead < _mask.columns && source.isOccupied(ahead, y)) until = ahead + blocks;
            if (column < 0 || column > until) continue;
            convolveBlock(line + std::ptrdiff_t{column} * blockSide, 1, _kernel.data(), _reach,
                          _between.block(column, y));
            _blocksBetween.occupy(column, y);
        }
    }

    void blurColumn(int column, BlockGrid& result) {
        // Past this row nothing occupied is in reach.
        int until = -1;
        for (int y = -_reach; y < _mask.rows; ++y) {
            const int ahead = y + _reach;
            if (ahead < _mask.rows && _blocksBetween.isOccupied(column, ahead)) {
                until = ahead + _reach;
            }
            if (y < 0 || y > until) continue;
            convolveBlock(_between.block(column, y), _between.stride(), _kernel.data(), _reach,
                          _mask.block(column, y));
            result.occupy(column, y);
        }
    }

    Mask _mask;
    Mask _between;
    std::vector<std::uint16_t> _kernel;
    int _reach;
    BlockGrid _blocksBetween;
    // One row with zeros on both sides, as far as the kernel may look.
    std::vector<std::uint8_t> _line;
};

// The radii of the three boxes whose combined variance comes closest to the Gaussian's.
struct BoxRadii {
    int values[3];
};

BoxRadii boxRadii(double sigma) {
    const double variance = sigma * sigma;
    const double ideal = std::sqrt(4 * variance + 1);
    int small = static_cast<int>(std::floor(ideal));
    if (small % 2 == 0) --small;
    // A box of width w has the variance (w² - 1) / 12; so many of the three are the smaller one.
    const double smallCount =
        (12 * variance - 3.0 * small * small - 12.0 * small - 9) / (-4.0 * small - 4);
    const int radius = (small - 1) / 2;
    BoxRadii radii{};
    for (int i = 0; i < 3; ++i)
        radii.values[i] = i < std::lround(smallCount) ? radius : radius + 1;
    return radii;
}

// One box pass along the rows. The last of three also transposes, so that two rounds of three blur
// both directions and end upright.
void boxBlurRows(const std::uint8_t* source, int width, int height, int radius, bool transpose,
                 std::uint8_t* result) {
    const float factor = 1.0F / static_cast<float>(2 * radius + 1);
    const std::ptrdiff_t step = transpose ? height : 1;
    for (int y = 0; y < height; ++y, source += width) {
        std::uint8_t* to = result + (transpose ? y : std::ptrdiff_t{width} * y);
        int sum = 0;
        for (int x = 0; x < std::min(radius, width); ++x)
            sum += source[x];
        for (int x = 0; x < width; ++x, to += step) {
            if (x + radius < width) sum += source[x + radius];
            if (x - radius - 1 >= 0) sum -= source[x - radius - 1];
            // Faster than lround, and the sum is never negative.
            // NOLINTNEXTLINE(bugprone-incorrect-roundings)
            *to = static_cast<std::uint8_t>(static_cast<float>(sum) * factor + 0.5F);
        }
    }
}

BlockGrid boxBlur(const Mask& mask, double sigma, std::vector<std::uint8_t>& scratch) {
    if (scratch.size() < mask.byteCount()) scratch.resize(mask.byteCount());
    const BoxRadii radii = boxRadii(sigma);
    int width = mask.columns * blockSide;
    int height = mask.rows;
    std::uint8_t* from = mask.bytes;
    std::uint8_t* to = scratch.data();
    for (int direction = 0; direction < 2; ++direction) {
        for (int pass = 0; pass < 3; ++pass) {
            boxBlurRows(from, width, height, radii.values[pass], pass == 2, to);
            std::swap(from, to);
        }
        std::swap(width, height);
    }
    // After an even number of passes the result is back in the mask.
    std::memset(scratch.data(), 0, mask.byteCount());
    return BlockGrid::of(mask);
}

}  // namespace

BlockGrid::BlockGrid(int columns, int rows)
    : _columns(columns),
      _rows(rows),
      _flags(static_cast<std::size_t>(columns) * static_cast<std::size_t>(rows)) {}

BlockGrid BlockGrid::of(const Mask& mask) {
    BlockGrid grid(mask.columns, mask.rows);
    const std::uint8_t* block = mask.bytes;
    for (std::uint8_t& flag : grid._flags) {
        std::uint64_t words[2];
        static_assert(sizeof words == blockSide);
        std::memcpy(words, block, sizeof words);
        flag = (words[0] | words[1]) != 0;
        block += blockSide;
    }
    return grid;
}

bool BlockGrid::isRowEmpty(int row) const {
    return std::memchr(_flags.data() + index(0, row), 1, static_cast<std::size_t>(_columns)) ==
           nullptr;
}

void BlockGrid::clear(const Mask& mask) const {
    std::uint8_t* block = mask.bytes;
    for (const std::uint8_t flag : _flags) {
        if (flag != 0) std::memset(block, 0, blockSide);
        block += blockSide;
    }
}

int blurReach(double sigma) {
    if (!(sigma > 0)) return 0;
    const double limited = std::min(sigma, largestSigma);
    if (limited <= largestExactSigma) return static_cast<int>(std::ceil(limited * 3));
    const BoxRadii radii = boxRadii(limited);
    return radii.values[0] + radii.values[1] + radii.values[2];
}

BlockGrid blurMask(const Mask& mask, double sigma, std::vector<std::uint8_t>& scratch) {
    if (!(sigma > 0)) return BlockGrid::of(mask);
    if (sigma <= largestExactSigma) return GaussianBlur(mask, sigma, scratch).run();
    return boxBlur(mask, std::min(sigma, largestSigma), scratch);
}

}  // namespace kalim::gfx
