#pragma once

#include <cstdint>

#include "kalimkit/gfx/Bitmap.h"
#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/GraphicsState.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// The pixelated form of a picture, kept as one pixel a block and laid out again only where it is
// painted: at a level of 20 it needs a four-hundredth of the picture's memory.
class KALIM_API MosaicBlocks {
public:
    // There are no blocks at all.
    MosaicBlocks() = default;
    // Blocks of `level` raster pixels (see Pixelation.h), their colours held by the device. None
    // for an empty raster or a level below 1.
    MosaicBlocks(gfx::Device& device, const gfx::Bitmap& raster, std::int32_t level);

    // Blocks of these colours, a pixel each, over a raster of this size, row by row from its top
    // left corner; none where there are no colours.
    static MosaicBlocks ofColors(gfx::Device& device, const gfx::Bitmap& colors, std::int32_t level,
                                 gfx::PixelSize raster);

    bool isEmpty() const { return !_colors; }

    // Paints the whole pixelated picture over the rectangle, in user space. Where one raster pixel
    // comes to one device pixel that shows what mosiacImageMosaicLevel() makes, byte for byte;
    // outside of the rectangle the outermost blocks go on. Without an image when there are no
    // blocks.
    gfx::Pattern patternOver(const gfx::Rect& rect) const;

private:
    // Framed by copies of the outermost blocks.
    gfx::ImageRef _colors;
    gfx::PixelSize _raster;
    std::int32_t _level = 0;
};

}  // namespace kalim
