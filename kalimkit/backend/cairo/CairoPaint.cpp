#include "kalimkit/backend/cairo/CairoPaint.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "kalimkit/backend/cairo/CairoGeometry.h"
#include "kalimkit/backend/cairo/CairoRaster.h"

namespace kalim::gfx {

namespace {

double clampUnit(double component) {
    if (!(component > 0)) return 0;
    return component < 1 ? component : 1;
}

// Cairo's scaler counts source pixels in 16.16 fixed point. Beyond, it fails and puts the context
// out of order.
constexpr double largestSourcePosition = 30000;

// The farthest position of the source, in each direction, that painting on the box looks at.
Point farthestPosition(const AffineTransform& toSource, const Rect& box) {
    Point farthest;
    for (const Point corner : {Point{}, box.origin, Point{box.maxX(), box.minY()},
                               Point{box.minX(), box.maxY()}, Point{box.maxX(), box.maxY()}}) {
        const Point p = toSource.apply(corner);
        farthest = {std::max(farthest.x, std::abs(p.x)), std::max(farthest.y, std::abs(p.y))};
    }
    return farthest;
}

// Tells how many pixels to average to one before sampling, when `shrink` of them fall on a device
// pixel.
double averagingFactor(double shrink, double farthest, Interpolation interpolation) {
    const bool isAveraged = interpolation == Interpolation::High && shrink > 2;
    return std::max(isAveraged ? std::floor(shrink) : 1, farthest / largestSourcePosition);
}

}  // namespace

void setSourceColor(cairo_t* context, const Color& color, double alpha) {
    cairo_set_source_rgba(context, clampUnit(color.red), clampUnit(color.green),
                          clampUnit(color.blue), clampUnit(color.alpha) * clampUnit(alpha));
}

bool setSourceImage(cairo_t* context, const Image& image, const AffineTransform& toDevice,
                    Interpolation interpolation, cairo_extend_t extend) {
    if (!isUsable(toDevice)) return false;
    const Rect bounds = clipBounds(context);
    const Point farthest = farthestPosition(toDevice.inverted(), bounds);
    const CairoRaster::Source source = CairoRaster::of(image)->source(
        averagingFactor(1 / std::hypot(toDevice.a, toDevice.b), farthest.x, interpolation),
        averagingFactor(1 / std::hypot(toDevice.c, toDevice.d), farthest.y, interpolation));
    AffineTransform transform = source.toRaster.concat(toDevice);
    const Point position = farthestPosition(transform.inverted(), bounds);
    if (std::max(position.x, position.y) > largestSourcePosition) return false;
    const PixelSize size{cairo_image_surface_get_width(source.surface.get()),
                         cairo_image_surface_get_height(source.surface.get())};
    const std::optional<AffineTransform> exact = transform.wholePixels(size);
    if (exact) transform = *exact;
    const bool isNearest = exact || interpolation == Interpolation::None;

    const PatternHandle pattern(cairo_pattern_create_for_surface(source.surface.get()));
    const cairo_matrix_t toSource = toCairo(transform.inverted());
    cairo_pattern_set_matrix(pattern.get(), &toSource);
    cairo_pattern_set_extend(pattern.get(), extend);
    cairo_pattern_set_filter(pattern.get(),
                             isNearest ? CAIRO_FILTER_NEAREST : CAIRO_FILTER_BILINEAR);
    cairo_set_source(context, pattern.get());
    return true;
}

cairo_operator_t operatorFor(BlendMode mode) {
    switch (mode) {
        case BlendMode::Normal:
            return CAIRO_OPERATOR_OVER;
        case BlendMode::SourceIn:
            return CAIRO_OPERATOR_IN;
        case BlendMode::Copy:
        case BlendMode::Clear:
            return CAIRO_OPERATOR_SOURCE;
        case BlendMode::Multiply:
            return CAIRO_OPERATOR_MULTIPLY;
    }
    return CAIRO_OPERATOR_OVER;
}

cairo_line_cap_t toCairo(LineCap cap) {
    switch (cap) {
        case LineCap::Butt:
            return CAIRO_LINE_CAP_BUTT;
        case LineCap::Round:
            return CAIRO_LINE_CAP_ROUND;
        case LineCap::Square:
            return CAIRO_LINE_CAP_SQUARE;
    }
    return CAIRO_LINE_CAP_BUTT;
}

cairo_line_join_t toCairo(LineJoin join) {
    switch (join) {
        case LineJoin::Miter:
            return CAIRO_LINE_JOIN_MITER;
        case LineJoin::Round:
            return CAIRO_LINE_JOIN_ROUND;
        case LineJoin::Bevel:
            return CAIRO_LINE_JOIN_BEVEL;
    }
    return CAIRO_LINE_JOIN_MITER;
}

}  // namespace kalim::gfx
