#include "kalimkit/backend/cairo/ShadowMask.h"

#include <algorithm>

#include "kalimkit/backend/cairo/CairoPaint.h"

namespace kalim::gfx {

namespace {

// Rows painted at a time. The occupied blocks of a band cover much less than the bounds of a shape
// that slants or is hollow, and each piece of a band costs a call.
constexpr int bandHeight = 32;
// Gaps of fewer blocks are painted over.
constexpr int smallestGap = 4;
// What a rare large shadow needed is given back.
constexpr std::size_t bytesKept = std::size_t{4} << 20;

bool isOccupied(const BlockGrid& blocks, int column, int top, int bottom) {
    for (int row = top; row < bottom; ++row) {
        if (blocks.isOccupied(column, row)) return true;
    }
    return false;
}

void releaseIfLarge(std::vector<std::uint8_t>& bytes) {
    if (bytes.size() > bytesKept) bytes = {};
}

SurfaceHandle surfaceOver(std::uint8_t* bytes, int width, int height, std::ptrdiff_t stride) {
    return SurfaceHandle(cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_A8, width, height,
                                                             static_cast<int>(stride)));
}

}  // namespace

ShadowMask::ShadowMask(ShadowMemory& memory, const DeviceBox& box, Point offset)
    : _memory(memory),
      _box(box),
      _mask{nullptr, (box.width() + Mask::blockSide - 1) / Mask::blockSide, box.height()} {
    if (_memory.coverage.size() < _mask.byteCount()) _memory.coverage.resize(_mask.byteCount());
    _mask.bytes = _memory.coverage.data();
    _surface = surfaceOver(_mask.bytes, box.width(), box.height(), _mask.stride());
    cairo_surface_set_device_offset(_surface.get(), offset.x - box.left, offset.y - box.top);
    _context.reset(cairo_create(_surface.get()));
}

ShadowMask::~ShadowMask() {
    _blocks.clear(_mask);
    releaseIfLarge(_memory.coverage);
    releaseIfLarge(_memory.scratch);
}

void ShadowMask::blur(double sigma) {
    _context.reset();
    cairo_surface_finish(_surface.get());
    _blocks = blurMask(_mask, sigma, _memory.scratch);
}

void ShadowMask::paint(cairo_t* target, const Color& color) const {
    setSourceColor(target, color, 1);
    for (int top = 0; top < _blocks.rows(); top += bandHeight) {
        const int bottom = std::min(top + bandHeight, _blocks.rows());
        int begin = 0;
        int end = 0;
        for (int column = 0; column < _blocks.columns(); ++column) {
            if (!isOccupied(_blocks, column, top, bottom)) continue;
            if (column >= end + smallestGap) {
                paintBlocks(target, begin, end, top, bottom);
                begin = column;
            }
            end = column + 1;
        }
        paintBlocks(target, begin, end, top, bottom);
    }
}

void ShadowMask::paintBlocks(cairo_t* target, int begin, int end, int top, int bottom) const {
    if (end <= begin) return;
    const SurfaceHandle part = surfaceOver(_mask.block(begin, top), (end - begin) * Mask::blockSide,
                                           bottom - top, _mask.stride());
    cairo_mask_surface(target, part.get(), _box.left + begin * Mask::blockSide, _box.top + top);
}

}  // namespace kalim::gfx
