#include "kalimkit/backend/cairo/CairoGeometry.h"

#include <algorithm>
#include <cmath>

namespace kalim::gfx {

bool isUsable(const AffineTransform& transform) {
    for (const double value : {transform.a, transform.b, transform.c, transform.d}) {
        if (!(std::abs(value) < 1e6)) return false;
    }
    if (!(std::abs(transform.tx) < 1e9 && std::abs(transform.ty) < 1e9)) return false;
    return std::abs(transform.determinant()) > 1e-9;
}

void tracePath(cairo_t* context, const Path& path, double scale) {
    cairo_new_path(context);
    const Point* next = path.points().data();
    const auto take = [&] {
        const Point& p = *next++;
        return Point{std::clamp(p.x * scale, -largestCoordinate, largestCoordinate),
                     std::clamp(p.y * scale, -largestCoordinate, largestCoordinate)};
    };
    Point current;
    Point subpathStart;
    for (const PathCommand command : path.commands()) {
        switch (command) {
            case PathCommand::Move:
                current = take();
                subpathStart = current;
                cairo_move_to(context, current.x, current.y);
                break;
            case PathCommand::Line:
                current = take();
                cairo_line_to(context, current.x, current.y);
                break;
            case PathCommand::Quad: {
                const Point control = take();
                const Point end = take();
                const Point c1 = current + (control - current) * (2.0 / 3);
                const Point c2 = end + (control - end) * (2.0 / 3);
                cairo_curve_to(context, c1.x, c1.y, c2.x, c2.y, end.x, end.y);
                current = end;
                break;
            }
            case PathCommand::Cubic: {
                const Point c1 = take();
                const Point c2 = take();
                current = take();
                cairo_curve_to(context, c1.x, c1.y, c2.x, c2.y, current.x, current.y);
                break;
            }
            case PathCommand::Close:
                cairo_close_path(context);
                current = subpathStart;
                break;
        }
    }
}

Rect pointBounds(const Path& path, double scale) {
    return AffineTransform::scaling(scale, scale).apply(path.pointBounds());
}

Rect clipBounds(cairo_t* context) {
    double left = 0;
    double top = 0;
    double right = 0;
    double bottom = 0;
    cairo_clip_extents(context, &left, &top, &right, &bottom);
    return Rect::spanning({left, top}, {right, bottom});
}

}  // namespace kalim::gfx
