#pragma once

#include <cstdint>
#include <vector>

#include "kalimkit/backend/cairo/CairoHandles.h"
#include "kalimkit/backend/cairo/DeviceBox.h"
#include "kalimkit/backend/cairo/MaskBlur.h"
#include "kalimkit/gfx/Color.h"

namespace kalim::gfx {

// Bytes lent to one shadow after the other, all zero in between: clearing what a shadow touched is
// much cheaper than clean memory for its bounds.
struct ShadowMemory {
    std::vector<std::uint8_t> coverage;
    std::vector<std::uint8_t> scratch;
};

// A shape's coverage where its shadow falls: the shape is drawn into context(), blurred, and
// painted in the shadow's colour. One at a time may use the memory.
class ShadowMask {
public:
    // Covers the box. Whatever is drawn into context() at a device position lands there moved by
    // the offset, in pixels.
    ShadowMask(ShadowMemory& memory, const DeviceBox& box, Point offset);
    ~ShadowMask();
    ShadowMask(const ShadowMask&) = delete;
    ShadowMask& operator=(const ShadowMask&) = delete;

    cairo_t* context() const { return _context.get(); }
    // Comes once, after the drawing.
    void blur(double sigma);
    // Under the current clip and operator of a context whose matrix is the identity.
    void paint(cairo_t* target, const Color& color) const;

private:
    // Columns of blocks from begin to end, rows from top to bottom.
    void paintBlocks(cairo_t* target, int begin, int end, int top, int bottom) const;

    ShadowMemory& _memory;
    DeviceBox _box;
    Mask _mask;
    SurfaceHandle _surface;
    ContextHandle _context;
    BlockGrid _blocks;
};

}  // namespace kalim::gfx
