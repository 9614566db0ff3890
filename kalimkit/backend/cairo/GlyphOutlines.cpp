#include "kalimkit/backend/cairo/GlyphOutlines.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "kalimkit/backend/cairo/CairoHandles.h"

namespace kalim::gfx {

namespace {

// Device pixels from one stamp of a silhouette to the next, along the pen's circle.
constexpr double stampDistance = 1.5;
constexpr int fewestStamps = 8;
constexpr int mostStamps = 64;

template <typename Use>
void forEachRun(const ShapedText& text, bool isColor, Use use) {
    for (const ShapedText::Run& run : text.runs()) {
        if (run.isColor == isColor) use(run);
    }
}

// A surface that the box fills, with its context placed and turned as the other one.
ContextHandle contextOver(const DeviceBox& box, cairo_format_t format, cairo_t* like) {
    const SurfaceHandle surface(cairo_image_surface_create(format, box.width(), box.height()));
    cairo_surface_set_device_offset(surface.get(), -box.left, -box.top);
    ContextHandle context(cairo_create(surface.get()));
    cairo_matrix_t matrix;
    cairo_get_matrix(like, &matrix);
    cairo_set_matrix(context.get(), &matrix);
    return context;
}

}  // namespace

void traceInkedGlyphs(cairo_t* context, const ShapedText& text) {
    forEachRun(text, false, [&](const ShapedText::Run& run) {
        cairo_move_to(context, run.x, 0);
        pango_cairo_glyph_string_path(context, run.glyphs->item->analysis.font, run.glyphs->glyphs);
    });
    // A point that no path follows is none of it.
    cairo_new_sub_path(context);
}

void showColorGlyphs(cairo_t* context, const ShapedText& text, double alpha) {
    if (alpha < 1) cairo_push_group(context);
    // Glyphs bring their colours, but nothing is drawn where the source in force is clear.
    cairo_set_source_rgba(context, 0, 0, 0, 1);
    forEachRun(text, true, [&](const ShapedText::Run& run) {
        cairo_move_to(context, run.x, 0);
        pango_cairo_show_glyph_string(context, run.glyphs->item->analysis.font, run.glyphs->glyphs);
    });
    cairo_new_path(context);
    if (alpha == 1) return;
    cairo_pop_group_to_source(context);
    cairo_paint_with_alpha(context, alpha);
}

void strokeColorGlyphs(cairo_t* context, const ShapedText& text, double reach,
                       const DeviceBox& box) {
    if (box.isEmpty()) return;
    const ContextHandle glyphs = contextOver(box, CAIRO_FORMAT_ARGB32, context);
    showColorGlyphs(glyphs.get(), text, 1);
    const ContextHandle mask = contextOver(box, CAIRO_FORMAT_A8, context);
    cairo_identity_matrix(mask.get());
    cairo_set_source_rgba(mask.get(), 0, 0, 0, 1);
    const double around = 2 * std::numbers::pi * reach / stampDistance;
    const int count = static_cast<int>(std::clamp<double>(around, fewestStamps, mostStamps));
    cairo_mask_surface(mask.get(), cairo_get_target(glyphs.get()), 0, 0);
    for (int i = 0; i < count; ++i) {
        const double angle = 2 * std::numbers::pi * i / count;
        cairo_mask_surface(mask.get(), cairo_get_target(glyphs.get()), reach * std::cos(angle),
                           reach * std::sin(angle));
    }
    cairo_save(context);
    cairo_identity_matrix(context);
    cairo_mask_surface(context, cairo_get_target(mask.get()), 0, 0);
    cairo_restore(context);
}

}  // namespace kalim::gfx
