#include "kalimkit/image/GaussianBlur.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "kalimkit/image/BlurRows.h"

namespace kalim {

namespace {

constexpr int channels = 4;
constexpr double largestSide = 32767;
constexpr double mostPixels = 1 << 27;

// How many standard deviations the result reaches beyond the raster, and the kernel beyond its
// middle.
constexpr double extentReach = 3;
constexpr double kernelReach = 3.5;

// How many pixels, each way, are averaged to one cell before the blurring proper. A power of two,
// so that pixels lie at multiples of 1/32 of a cell and interpolation is exact in small integers.
// A cell is small enough beside the Gaussian that nothing of it can be told afterwards.
int cellSide(double sigma) {
    constexpr int largest = 16;
    constexpr double leastCells = 3.5;
    int side = 1;
    while (side < largest && sigma >= 2 * side * leastCells)
        side *= 2;
    return side;
}

// Yields half of a normalised Gaussian, from the middle outwards, in cells.
std::vector<float> halfKernel(double sigma, int side) {
    double variance = sigma / side * (sigma / side);
    // Averaging the pixels of a cell and interpolating between the cells blur by themselves: by
    // (1 - 1/side^2) / 12 and, on average, (2 + 1/side^2) / 12.
    if (side > 1) variance -= 0.25;
    const int taps = static_cast<int>(std::ceil(kernelReach * std::sqrt(variance)));
    std::vector<double> exact;
    double sum = 0;
    for (int i = 0; i <= taps; ++i) {
        // The middle apart: the variance of a tiny radius may come to 0.
        exact.push_back(i == 0 ? 1 : std::exp(-i * i / (2 * variance)));
        sum += i == 0 ? exact.back() : 2 * exact.back();
    }
    std::vector<float> kernel;
    kernel.reserve(exact.size());
    for (const double weight : exact)
        kernel.push_back(static_cast<float>(weight / sum));
    return kernel;
}

// A position along one side of the result, as a cell and how far, in 32nds, it is from that cell's
// middle to the next one's.
struct CellPosition {
    int cell = 0;
    int part = 0;
};

CellPosition cellPosition(int pixel, int extent, int side) {
    // The distance from the middle of the raster's first cell is doubled, so that it is whole.
    const int doubled = 2 * (pixel - extent) + 1 - side;
    const int cell = static_cast<int>(std::floor(doubled / (2.0 * side)));
    return {cell, (doubled - cell * 2 * side) * (blendSteps / 2) / side};
}

// Blurs row by row, so that all that is kept besides the result is a few rows of cells: cells are
// averaged from the raster and blurred across when they are first needed, blurred down from those,
// and drawn apart again.
class Blur {
public:
    Blur(const gfx::Bitmap& raster, double sigma);
    gfx::Bitmap run();

private:
    // The cells that the result shows something of; some lie outside of the raster.
    struct Span {
        int first = 0;
        int count = 0;
    };
    Span spanOf(int length) const;
    int reachInCells() const { return static_cast<int>(_kernel.size()) - 1; }
    float* acrossRow(int row);

    // Into _cells, which stay 0 outside of the raster.
    void readCells(int row);
    void blurAcross(int row);
    void blurDown(int row);
    void drawApart(std::vector<std::uint16_t>& wide) const;
    // Does all of it for one row of cells; rows come in ascending order.
    void prepare(int row, std::vector<std::uint16_t>& wide);

    const gfx::Bitmap& _raster;
    int _side;
    int _extent;
    std::vector<float> _kernel;
    Span _columns;
    Span _rows;
    // Rows of cells in the raster, and how many of them are blurred across already.
    int _rasterRows;
    int _acrossDone = 0;
    std::vector<std::uint16_t> _sums;
    std::vector<float> _cells;
    // The last rows blurred across, as many as the kernel is long.
    std::vector<float> _across;
    std::vector<float> _down;
    // Every column of the result has one.
    std::vector<CellPosition> _positions;
};

Blur::Blur(const gfx::Bitmap& raster, double sigma)
    : _raster(raster),
      _side(cellSide(sigma)),
      _extent(blurExtent(sigma)),
      _kernel(halfKernel(sigma, _side)),
      _columns(spanOf(raster.width())),
      _rows(spanOf(raster.height())),
      _rasterRows((raster.height() + _side - 1) / _side) {
    const std::size_t row = static_cast<std::size_t>(_columns.count) * channels;
    const auto taps = static_cast<std::size_t>(reachInCells());
    const auto cells = static_cast<std::size_t>((raster.width() + _side - 1) / _side);
    _sums.resize(cells * static_cast<std::size_t>(_side) * channels);
    _cells.resize(row + 2 * taps * channels);
    _across.resize(row * (2 * taps + 1));
    _down.resize(row);
    for (int x = 0; x < raster.width() + 2 * _extent; ++x)
        _positions.push_back(cellPosition(x, _extent, _side));
}

Blur::Span Blur::spanOf(int length) const {
    const int first = cellPosition(0, _extent, _side).cell;
    const int last = cellPosition(length + 2 * _extent - 1, _extent, _side).cell + 1;
    return {first, last - first + 1};
}

gfx::Bitmap Blur::run() {
    auto result =
        gfx::Bitmap::unwritten(_raster.width() + 2 * _extent, _raster.height() + 2 * _extent);
    std::vector<std::uint16_t> above(result.stride());
    std::vector<std::uint16_t> below(result.stride());
    int row = _rows.first;
    prepare(row, above);
    prepare(row + 1, below);
    for (int y = 0; y < result.height(); ++y) {
        const CellPosition position = cellPosition(y, _extent, _side);
        if (position.cell > row) {
            ++row;
            above.swap(below);
            prepare(row + 1, below);
        }
        blendRows(above.data(), below.data(), position.part, result.row(y), result.stride());
    }
    return result;
}

void Blur::prepare(int row, std::vector<std::uint16_t>& wide) {
    while (_acrossDone < _rasterRows && _acrossDone <= row + reachInCells()) {
        readCells(_acrossDone);
        blurAcross(_acrossDone);
        ++_acrossDone;
    }
    blurDown(row);
    drawApart(wide);
}

float* Blur::acrossRow(int row) {
    const std::size_t slot = static_cast<std::size_t>(row) % (2 * _kernel.size() - 1);
    return _across.data() + slot * _down.size();
}

void Blur::readCells(int row) {
    const int y = row * _side;
    const int rows = std::min(_side, _raster.height() - y);
    std::ranges::fill(_sums, std::uint16_t{0});
    for (int i = 0; i < rows; ++i)
        addRow(_raster.row(y + i), _sums.data(), _raster.stride());
    const std::size_t before = static_cast<std::size_t>(reachInCells() - _columns.first) * channels;
    averageCells(_sums.data(), _side, _cells.data() + before, _sums.size());
}

void Blur::blurAcross(int row) {
    float* const target = acrossRow(row);
    const float* const middle = _cells.data() + std::ptrdiff_t{reachInCells()} * channels;
    std::fill_n(target, _down.size(), 0.0F);
    addWeighted(target, middle, _kernel[0], _down.size());
    for (int i = 1; i <= reachInCells(); ++i) {
        const std::ptrdiff_t offset = std::ptrdiff_t{i} * channels;
        addWeighted(target, middle - offset, middle + offset, _kernel[static_cast<std::size_t>(i)],
                    _down.size());
    }
}

void Blur::blurDown(int row) {
    const auto inRaster = [&](int at) { return at >= 0 && at < _rasterRows; };
    float* const target = _down.data();
    const std::size_t count = _down.size();
    std::ranges::fill(_down, 0.0F);
    if (inRaster(row)) addWeighted(target, acrossRow(row), _kernel[0], count);
    for (int i = 1; i <= reachInCells(); ++i) {
        const float weight = _kernel[static_cast<std::size_t>(i)];
        if (inRaster(row - i) && inRaster(row + i)) {
            addWeighted(target, acrossRow(row - i), acrossRow(row + i), weight, count);
        } else if (inRaster(row - i)) {
            addWeighted(target, acrossRow(row - i), weight, count);
        } else if (inRaster(row + i)) {
            addWeighted(target, acrossRow(row + i), weight, count);
        }
    }
}

void Blur::drawApart(std::vector<std::uint16_t>& wide) const {
    std::uint16_t* target = wide.data();
    for (const CellPosition& position : _positions) {
        const float* const cell =
            _down.data() + static_cast<std::ptrdiff_t>(position.cell - _columns.first) * channels;
        const float part = static_cast<float>(position.part) / blendSteps;
        for (int c = 0; c < channels; ++c) {
            // Never less for more, so that no colour comes to exceed its alpha.
            const float value = cell[c] * (1 - part) + cell[c + channels] * part;
            target[c] = static_cast<std::uint16_t>(value * (2 * finePerLevel) + 1) / 2;
        }
        target += channels;
    }
}

}  // namespace

int blurExtent(double radius) {
    if (!std::isfinite(radius) || radius <= 0) return 0;
    return static_cast<int>(std::min(std::ceil(extentReach * radius), largestSide));
}

gfx::Bitmap gaussianBlurred(const gfx::Bitmap& raster, double radius) {
    if (raster.isEmpty() || !std::isfinite(radius) || radius < 0) return {};
    if (radius == 0) return raster;
    const double width = raster.width() + 2.0 * blurExtent(radius);
    const double height = raster.height() + 2.0 * blurExtent(radius);
    if (std::max(width, height) > largestSide || width * height > mostPixels) return {};
    return Blur(raster, radius).run();
}

}  // namespace kalim
