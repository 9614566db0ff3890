#include "kalimkit/backend/cairo/CairoContext.h"

#include <pango/pangocairo.h>

#include <algorithm>
#include <numbers>
#include <utility>

#include "kalimkit/backend/cairo/CairoGeometry.h"
#include "kalimkit/backend/cairo/CairoPaint.h"
#include "kalimkit/backend/cairo/CairoSurface.h"
#include "kalimkit/backend/cairo/GlyphOutlines.h"

namespace kalim::gfx {

namespace {

// Cairo's own limit, in pen radii, beyond which a mitred corner is cut off.
constexpr double miterLimit = 10;
constexpr double largestPen = 1e6;
// How far, in pixels, the shadow of a group may fall into view from. It bounds the group's memory.
constexpr int farthestCast = 2048;
constexpr Color transparent{0, 0, 0, 0};

DeviceBox clipBox(cairo_t* context) {
    return DeviceBox::around(clipBounds(context));
}

void prepare(cairo_t* context, const GraphicsState& state, cairo_operator_t blending) {
    cairo_set_operator(context, blending);
    cairo_set_antialias(context, state.antialias ? CAIRO_ANTIALIAS_DEFAULT : CAIRO_ANTIALIAS_NONE);
}

// Whether Cairo, which goes along the rows of the target, reads a raster of the size without
// leaving the processor's cache for each pixel.
bool isReadAlongRows(const AffineTransform& toDevice, PixelSize size) {
    constexpr std::int64_t pixelsInCache = 128 * 1024;
    return toDevice.isScaleAndTranslation() ||
           std::int64_t{size.width} * size.height <= pixelsInCache;
}

// Draws the box by pieces.
template <typename Drawing>
void inTiles(cairo_t* context, const DeviceBox& box, Drawing draw) {
    constexpr int side = 128;
    for (int top = box.top; top < box.bottom; top += side) {
        for (int left = box.left; left < box.right; left += side) {
            cairo_save(context);
            cairo_rectangle(context, left, top, std::min(side, box.right - left),
                            std::min(side, box.bottom - top));
            cairo_clip(context);
            draw();
            cairo_restore(context);
        }
    }
}

// How far a stroke may reach from its path, in the units that `stretch` leads to.
double penReach(const GraphicsState& state, double stretch) {
    const double corner = state.lineJoin == LineJoin::Miter ? miterLimit : std::numbers::sqrt2;
    return std::min(state.lineWidth * stretch, largestPen) / 2 * corner;
}

Path quadrilateral(const Rect& rect, const AffineTransform& transform) {
    Path path;
    path.addRect(rect);
    return path.transformed(transform);
}

// FreeType refuses sizes, in pixels, that are out of its range, which would put the Cairo context
// out of order.
bool isDrawable(double fontSize) {
    return fontSize > 0.05 && fontSize < 16000;
}

// Ready-made glyph masks are some 25 times faster than outlines, but Cairo puts each on whole
// pixels, which makes small text uneven and lets turned text wobble.
bool suitsGlyphMasks(const GraphicsState& state, const AffineTransform& toDevice,
                     const Font& font) {
    constexpr double smallestSize = 20;
    return state.blendMode == BlendMode::Normal && !state.fillPattern &&
           toDevice.isScaleAndTranslation() && font.size * toDevice.d >= smallestSize;
}

}  // namespace

CairoContext::CairoContext(cairo_surface_t* surface, double scale,
                           std::shared_ptr<CairoResources> resources)
    : _scale(scale), _resources(std::move(resources)) {
    _layers.emplace_back();
    _layers.back().context.reset(cairo_create(surface));
}

// ---- state and clip -------------------------------------------------------------------------

void CairoContext::onSave() {
    cairo_save(target());
}

void CairoContext::onRestore() {
    cairo_restore(target());
}

void CairoContext::onClip(const Path& path) {
    prepare(target(), state(), CAIRO_OPERATOR_OVER);
    tracePath(target(), path, _scale);
    cairo_clip(target());
}

// ---- shapes, images, text -------------------------------------------------------------------

void CairoContext::onFill(const Path& path) {
    paint(pointBounds(path, _scale), [&](cairo_t* context) {
        tracePath(context, path, _scale);
        fillPath(context);
    });
}

void CairoContext::onStroke(const Path& path) {
    if (!isUsable(toDevice())) return;
    const double reach = penReach(state(), toDevice().largestStretch());
    paint(pointBounds(path, _scale).inset(-reach, -reach), [&](cairo_t* context) {
        tracePath(context, path, _scale);
        strokePath(context);
    });
}

void CairoContext::onDrawRaster(const Image& image, const Rect& rect) {
    const PixelSize size = image.pixelSize();
    const AffineTransform rasterToDevice =
        AffineTransform::scaling(rect.size.width / size.width, rect.size.height / size.height)
            .concat(AffineTransform::translation(rect.origin))
            .concat(toDevice());
    const Path edge = quadrilateral(rect, toDevice());
    paint(pointBounds(edge, 1), [&](cairo_t* context) {
        if (!setSourceImage(context, image, rasterToDevice, state().interpolation,
                            CAIRO_EXTEND_PAD)) {
            return;
        }
        const auto fill = [&] {
            tracePath(context, edge, 1);
            fillSource(context, state().alpha);
        };
        if (isReadAlongRows(rasterToDevice, size)) return fill();
        inTiles(context, DeviceBox::around(pointBounds(edge, 1)).intersection(clipBox(context)),
                fill);
    });
}

void CairoContext::onDrawSurface(Surface& surface, const Rect& rect) {
    const auto* const own = dynamic_cast<const CairoSurface*>(&surface);
    if (!own) return Context::onDrawSurface(surface, rect);
    const PixelSize size = own->pixelSize();
    const AffineTransform pixelsToDevice =
        AffineTransform::scaling(rect.size.width / size.width, rect.size.height / size.height)
            .concat(AffineTransform::translation(rect.origin))
            .concat(toDevice());
    if (!isUsable(pixelsToDevice)) return;
    const cairo_matrix_t toSource = toCairo(pixelsToDevice.inverted());
    const Path edge = quadrilateral(rect, toDevice());
    paint(pointBounds(edge, 1), [&](cairo_t* context) {
        cairo_set_source_surface(context, own->surface(), 0, 0);
        cairo_pattern_t* const source = cairo_get_source(context);
        cairo_pattern_set_matrix(source, &toSource);
        cairo_pattern_set_extend(source, CAIRO_EXTEND_PAD);
        cairo_pattern_set_filter(source, state().interpolation == Interpolation::None
                                             ? CAIRO_FILTER_NEAREST
                                             : CAIRO_FILTER_BILINEAR);
        tracePath(context, edge, 1);
        fillSource(context, state().alpha);
    });
}

void CairoContext::onDrawText(std::string_view text, Point baseline, const Font& font) {
    const AffineTransform placed = toDevice().translated(baseline.x, baseline.y);
    if (!isUsable(placed) || !isDrawable(font.size * placed.largestStretch())) return;
    const std::shared_ptr<const ShapedText> shaped = _resources->text().shape(text, font);
    const bool isFilled = state().textMode == TextMode::Fill;
    const double reach = isFilled ? 1 : penReach(state(), placed.largestStretch()) + 1;
    paint(placed.apply(shaped->inkBounds()).inset(-reach, -reach), [&](cairo_t* context) {
        const cairo_matrix_t matrix = toCairo(placed);
        cairo_new_path(context);
        cairo_set_matrix(context, &matrix);
        cairo_move_to(context, 0, 0);
        if (shaped->hasColorGlyphs()) return paintColorText(context, *shaped, placed);
        if (isFilled && suitsGlyphMasks(state(), placed, font)) {
            setSourceColor(context, state().fillColor, state().alpha);
            pango_cairo_show_layout_line(context, shaped->line());
            cairo_identity_matrix(context);
            return;
        }
        pango_cairo_layout_line_path(context, shaped->line());
        cairo_identity_matrix(context);
        isFilled ? fillPath(context) : strokePath(context);
    });
}

// The context carries the matrix of the text, and is left with none.
void CairoContext::paintColorText(cairo_t* context, const ShapedText& text,
                                  const AffineTransform& placed) const {
    const bool isFilled = state().textMode == TextMode::Fill;
    if (isFilled) {
        showColorGlyphs(context, text, state().alpha);
    } else {
        const double reach =
            std::min(state().lineWidth * toDevice().largestStretch(), largestPen) / 2;
        const Rect ink = placed.apply(text.inkBounds()).inset(-reach - 1, -reach - 1);
        const cairo_matrix_t matrix = toCairo(placed);
        cairo_identity_matrix(context);
        // What lies out of view may reach into it.
        const DeviceBox visible = clipBox(context).grown(static_cast<int>(reach) + 1);
        cairo_set_matrix(context, &matrix);
        setSourceColor(context, state().strokeColor, state().alpha);
        strokeColorGlyphs(context, text, reach, DeviceBox::around(ink).intersection(visible));
    }
    cairo_new_path(context);
    traceInkedGlyphs(context, text);
    cairo_identity_matrix(context);
    isFilled ? fillPath(context) : strokePath(context);
}

// ---- groups ---------------------------------------------------------------------------------

void CairoContext::onBeginGroup() {
    const DeviceBox visible = clipBox(target());
    Layer layer;
    layer.box = visible;
    if (state().castsShadow() && !visible.isEmpty()) {
        // What casts a shadow into the visible part may itself be out of it.
        const Rect casting = visible.rect().offset(-(state().shadow->offset * _scale));
        layer.box = visible.unionWith(DeviceBox::around(casting).grown(shadowReach()))
                        .intersection(visible.grown(farthestCast));
    }
    layer.surface.reset(
        cairo_image_surface_create(CAIRO_FORMAT_ARGB32, layer.box.width(), layer.box.height()));
    cairo_surface_set_device_offset(layer.surface.get(), -layer.box.left, -layer.box.top);
    layer.context.reset(cairo_create(layer.surface.get()));
    _layers.push_back(std::move(layer));
}

void CairoContext::onEndGroup() {
    const Layer layer = std::move(_layers.back());
    _layers.pop_back();
    if (cairo_surface_status(layer.surface.get()) != CAIRO_STATUS_SUCCESS) return;
    const bool isNormal = state().blendMode == BlendMode::Normal;
    const Rect bounds = (isNormal ? layer.painted : layer.box).rect();
    // A shadow may lie between whole pixels, so a transparent rim belongs to it.
    const Path edge = quadrilateral(bounds.inset(-1, -1), {});
    paint(bounds, [&](cairo_t* context) {
        cairo_set_source_surface(context, layer.surface.get(), 0, 0);
        cairo_pattern_set_filter(cairo_get_source(context), CAIRO_FILTER_BILINEAR);
        tracePath(context, edge, 1);
        fillSource(context, state().alpha);
    });
}

// ---- painting -------------------------------------------------------------------------------

AffineTransform CairoContext::toDevice() const {
    return state().transform.concat(AffineTransform::scaling(_scale, _scale));
}

void CairoContext::paint(const Rect& bounds, const Painter& painter) {
    const DeviceBox visible = clipBox(target());
    if (visible.isEmpty()) return;
    if (state().castsShadow()) paintShadow(bounds, visible, painter);
    const DeviceBox painted = DeviceBox::around(bounds).intersection(visible);
    if (painted.isEmpty()) return;
    prepare(target(), state(), operatorFor(state().blendMode));
    painter(target());
    _layers.back().markPainted(painted);
}

void CairoContext::paintShadow(const Rect& bounds, const DeviceBox& visible,
                               const Painter& painter) {
    const Shadow& shadow = *state().shadow;
    const Point offset = shadow.offset * _scale;
    const int reach = shadowReach();
    const DeviceBox cast = DeviceBox::around(bounds.offset(offset)).grown(reach);
    if (cast.intersection(visible).isEmpty()) return;
    ShadowMask mask(_resources->shadows, cast.intersection(visible.grown(reach)), offset);
    prepare(mask.context(), state(), CAIRO_OPERATOR_OVER);
    painter(mask.context());
    mask.blur(shadowSigma());
    prepare(target(), state(), CAIRO_OPERATOR_OVER);
    mask.paint(target(), shadow.color);
    _layers.back().markPainted(cast.intersection(visible));
}

double CairoContext::shadowSigma() const {
    return std::min(state().shadow->blur / 2 * _scale, largestSigma);
}

int CairoContext::shadowReach() const {
    return blurReach(shadowSigma());
}

void CairoContext::fillPath(cairo_t* context) const {
    if (!state().fillPattern) {
        setSourceColor(context, state().fillColor, state().alpha);
        return fillSource(context, 1);
    }
    const Pattern& pattern = *state().fillPattern;
    const Image& image = *pattern.image;
    const AffineTransform rasterToDevice =
        AffineTransform::scaling(1 / image.scale(), 1 / image.scale())
            .concat(uprightTransform(image.orientation(), image.size()))
            .concat(pattern.transform)
            .concat(AffineTransform::scaling(_scale, _scale));
    if (setSourceImage(context, image, rasterToDevice, pattern.interpolation,
                       CAIRO_EXTEND_REPEAT)) {
        fillSource(context, state().alpha);
    }
}

void CairoContext::fillSource(cairo_t* context, double alpha) const {
    if (state().blendMode == BlendMode::Clear) {
        setSourceColor(context, transparent, 0);
        return cairo_fill(context);
    }
    if (alpha == 1 && state().blendMode != BlendMode::SourceIn) return cairo_fill(context);
    cairo_save(context);
    cairo_clip(context);
    paintSource(context, alpha);
    cairo_restore(context);
}

void CairoContext::paintSource(cairo_t* context, double alpha) const {
    if (state().blendMode == BlendMode::Copy && alpha < 1) {
        // Cairo would take the alpha for coverage and let the old paint shine through.
        cairo_push_group(context);
        cairo_set_operator(context, CAIRO_OPERATOR_OVER);
        cairo_paint_with_alpha(context, alpha);
        cairo_pop_group_to_source(context);
        return cairo_paint(context);
    }
    cairo_paint_with_alpha(context, alpha);
}

void CairoContext::strokePath(cairo_t* context) const {
    const AffineTransform pen = toDevice();
    const cairo_matrix_t matrix = toCairo(pen);
    const bool isClear = state().blendMode == BlendMode::Clear;
    setSourceColor(context, isClear ? transparent : state().strokeColor, state().alpha);
    cairo_set_line_cap(context, toCairo(state().lineCap));
    cairo_set_line_join(context, toCairo(state().lineJoin));
    cairo_set_miter_limit(context, miterLimit);
    cairo_set_line_width(context, std::min(state().lineWidth, largestPen / pen.largestStretch()));
    if (state().blendMode == BlendMode::SourceIn) return strokeWithin(context, matrix);
    cairo_set_matrix(context, &matrix);
    cairo_stroke(context);
    cairo_identity_matrix(context);
}

void CairoContext::strokeWithin(cairo_t* context, const cairo_matrix_t& pen) const {
    cairo_surface_t* const below = cairo_get_group_target(context);
    cairo_push_group_with_content(context, CAIRO_CONTENT_ALPHA);
    cairo_set_operator(context, CAIRO_OPERATOR_OVER);
    cairo_set_source_rgba(context, 0, 0, 0, 1);
    cairo_set_matrix(context, &pen);
    cairo_stroke(context);
    cairo_identity_matrix(context);
    const PatternHandle coverage(cairo_pop_group(context));
    cairo_push_group(context);
    cairo_set_operator(context, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_surface(context, below, 0, 0);
    cairo_paint(context);
    cairo_set_operator(context, CAIRO_OPERATOR_IN);
    setSourceColor(context, state().strokeColor, state().alpha);
    cairo_paint(context);
    cairo_pop_group_to_source(context);
    cairo_set_operator(context, CAIRO_OPERATOR_SOURCE);
    cairo_mask(context, coverage.get());
}

void CairoContext::Layer::markPainted(const DeviceBox& drawn) {
    painted = painted.isEmpty() ? drawn : painted.unionWith(drawn);
}

}  // namespace kalim::gfx
