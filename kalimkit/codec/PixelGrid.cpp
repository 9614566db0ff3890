#include <algorithm>

#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/JpegFrame.h"
#include "kalimkit/codec/PixelMap.h"
#include "kalimkit/codec/Saving.h"

namespace kalim::codec {

namespace {

constexpr int blockSide = 8;

// A colour that has fewer samples than pixels is spread over these by mixing each sample with the
// next one, and a progressive picture that lacks bits by a curve through the next two blocks.
int reachBeside(const JpegFrame& frame, ByteSpan file) {
    const gfx::PixelSize cell = frame.cell();
    const int spread = std::max(cell.width, cell.height) / blockSide;
    const int smoothed = frame.lacksBits(file) ? 2 * std::max(cell.width, cell.height) : 0;
    return smoothed + (spread > 1 ? spread : 0);
}

int remainder(int value, int divisor) {
    return (value % divisor + divisor) % divisor;
}

// The corner that lies at 0 or before it.
int begin(int corner, int cell) {
    const int inside = remainder(corner, cell);
    return inside == 0 ? 0 : inside - cell;
}

}  // namespace

gfx::PixelGrid pixelGrid(ByteSpan file) {
    if (fileFormat(file) != FileFormat::Jpeg) return {};
    const auto frame = JpegFrame::read(file);
    if (!frame) return {};
    const gfx::PixelSize seen =
        withExchangedSides(frame->storedSize, gfx::exchangesSides(frame->orientation));
    const PixelMap upright = PixelMap::upright(frame->orientation, seen);
    const gfx::PixelSize cell = frame->cell();
    const gfx::PixelRect corner = upright.apply({0, 0, cell.width, cell.height});
    return {.cell = {corner.width, corner.height},
            .x = begin(corner.x, corner.width),
            .y = begin(corner.y, corner.height),
            .reach = reachBeside(*frame, file)};
}

}  // namespace kalim::codec
