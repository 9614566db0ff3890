#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/host/browser/PageGrid.h"

namespace kalim {

// Colours have at most a sample for four by four pixels, so a cell has at most 32 by 32; a picture
// that came slowly is smoothed over two of them, and spread over one sample.
gfx::PixelGrid pageGrid(codec::ByteSpan file) {
    gfx::PixelGrid grid;
    if (codec::fileFormat(file) == codec::FileFormat::Jpeg) grid.reach = 32 + 2 * 32 + 4;
    return grid;
}

}  // namespace kalim
