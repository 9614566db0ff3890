#include "tests/support/PictureComparison.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace kalim::test {

namespace {

constexpr int tileSide = 16;
constexpr double largestMean = 6;
constexpr int strongDifference = 48;
constexpr double largestStrongShare = 0.02;
constexpr std::size_t tilesListed = 20;

TileDifference compareTile(const gfx::Bitmap& a, const gfx::Bitmap& b, int left, int top) {
    TileDifference tile{left, top, std::min(tileSide, a.width() - left),
                        std::min(tileSide, a.height() - top)};
    long sums[4] = {};
    int strong = 0;
    for (int y = top; y < top + tile.height; ++y) {
        const std::uint8_t* pixelA = a.row(y) + 4 * static_cast<std::size_t>(left);
        const std::uint8_t* pixelB = b.row(y) + 4 * static_cast<std::size_t>(left);
        for (int x = 0; x < tile.width; ++x, pixelA += 4, pixelB += 4) {
            int largest = 0;
            for (int channel = 0; channel < 4; ++channel) {
                const int difference = std::abs(pixelA[channel] - pixelB[channel]);
                sums[channel] += difference;
                largest = std::max(largest, difference);
            }
            if (largest > strongDifference) ++strong;
        }
    }
    const double count = tile.width * tile.height;
    tile.mean = static_cast<double>(*std::max_element(sums, sums + 4)) / count;
    tile.strongShare = strong / count;
    return tile;
}

std::string sizeText(const gfx::Bitmap& bitmap) {
    return std::to_string(bitmap.width()) + "x" + std::to_string(bitmap.height());
}

std::string describe(const std::vector<TileDifference>& tiles) {
    if (tiles.empty()) return {};
    std::string text = std::to_string(tiles.size()) + " tile(s) differ:";
    for (std::size_t i = 0; i < std::min(tiles.size(), tilesListed); ++i) {
        const TileDifference& tile = tiles[i];
        char line[160];
        std::snprintf(line, sizeof line,
                      "\n  %dx%d at (%d,%d): mean difference %.1f, %.0f %% of pixels strongly",
                      tile.width, tile.height, tile.x, tile.y, tile.mean, tile.strongShare * 100);
        text += line;
    }
    if (tiles.size() > tilesListed) text += "\n  ...";
    return text;
}

}  // namespace

PictureComparison comparePictures(const gfx::Bitmap& expected, const gfx::Bitmap& actual) {
    PictureComparison result;
    result.sameSize = expected.size() == actual.size();
    if (!result.sameSize) {
        result.message = "expected " + sizeText(expected) + ", got " + sizeText(actual);
        return result;
    }
    for (int y = 0; y < expected.height(); y += tileSide) {
        for (int x = 0; x < expected.width(); x += tileSide) {
            const TileDifference tile = compareTile(expected, actual, x, y);
            if (tile.mean > largestMean || tile.strongShare > largestStrongShare) {
                result.tiles.push_back(tile);
            }
        }
    }
    result.message = describe(result.tiles);
    return result;
}

}  // namespace kalim::test
