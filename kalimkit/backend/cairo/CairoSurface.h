#pragma once

#include <memory>

#include "kalimkit/backend/cairo/CairoContext.h"
#include "kalimkit/backend/cairo/CairoHandles.h"
#include "kalimkit/gfx/Surface.h"

namespace kalim::gfx {

// Owns a Cairo image surface and its context.
class CairoSurface : public Surface {
public:
    // Null when the size cannot be had.
    static std::shared_ptr<CairoSurface> make(Size size, double scale, bool opaque,
                                              std::shared_ptr<CairoResources> resources);

    PixelSize pixelSize() const override;
    double scale() const override { return _scale; }
    bool isOpaque() const override;
    Context& context() override { return _context; }
    ImageRef makeImage() override;

    // The pixels drawn so far; see CairoDevice::pixels.
    const std::uint8_t* bytes() const;
    cairo_surface_t* surface() const { return _surface.get(); }

private:
    CairoSurface(SurfaceHandle surface, double scale, std::shared_ptr<CairoResources> resources);

    SurfaceHandle _surface;
    double _scale;
    CairoContext _context;
};

}  // namespace kalim::gfx
