#include "kalimkit/image/MosaicBlocks.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "kalimkit/image/Pixelation.h"

namespace kalim {

namespace {

// Patterns repeat. A pixel at the picture's edge, widened by half a device pixel, must not look at
// the opposite side: with so many blocks around, it does not until a device pixel holds as many as
// twice of them.
constexpr int frameWidth = 4;

gfx::Bitmap framed(const gfx::Bitmap& blocks) {
    gfx::Bitmap result(blocks.width() + 2 * frameWidth, blocks.height() + 2 * frameWidth);
    for (int y = 0; y < result.height(); ++y) {
        const std::uint8_t* const source =
            blocks.row(std::clamp(y - frameWidth, 0, blocks.height() - 1));
        std::uint8_t* target = result.row(y);
        for (int x = 0; x < result.width(); ++x, target += 4) {
            const int column = std::clamp(x - frameWidth, 0, blocks.width() - 1);
            std::memcpy(target, source + static_cast<std::ptrdiff_t>(column) * 4, 4);
        }
    }
    return result;
}

}  // namespace

MosaicBlocks::MosaicBlocks(gfx::Device& device, const gfx::Bitmap& raster, std::int32_t level)
    : MosaicBlocks(ofColors(device, blockColors(raster, level), level, raster.size())) {}

MosaicBlocks MosaicBlocks::ofColors(gfx::Device& device, const gfx::Bitmap& colors,
                                    std::int32_t level, gfx::PixelSize raster) {
    MosaicBlocks blocks;
    if (colors.isEmpty()) return blocks;
    blocks._colors = device.makeImage(framed(colors), 1, gfx::ImageOrientation::Up);
    blocks._raster = raster;
    blocks._level = level;
    return blocks;
}

gfx::Pattern MosaicBlocks::patternOver(const gfx::Rect& rect) const {
    if (!_colors) return {};
    // The last blocks may reach beyond the picture, so that the level counts, not their number.
    const gfx::AffineTransform blocksToRaster =
        gfx::AffineTransform::scaling(_level, _level).translated(-frameWidth, -frameWidth);
    const gfx::AffineTransform rasterToUser =
        gfx::AffineTransform::scaling(rect.size.width / _raster.width,
                                      rect.size.height / _raster.height)
            .concat(gfx::AffineTransform::translation(rect.origin));
    return {_colors, blocksToRaster.concat(rasterToUser), gfx::Interpolation::None};
}

}  // namespace kalim
