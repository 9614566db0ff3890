#pragma once

#include <cairo.h>

#include <memory>

namespace kalim::gfx {

// Releases one reference.
struct CairoRelease {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_pattern_t* pattern) const { cairo_pattern_destroy(pattern); }
};

using ContextHandle = std::unique_ptr<cairo_t, CairoRelease>;
using SurfaceHandle = std::unique_ptr<cairo_surface_t, CairoRelease>;
using PatternHandle = std::unique_ptr<cairo_pattern_t, CairoRelease>;

}  // namespace kalim::gfx
