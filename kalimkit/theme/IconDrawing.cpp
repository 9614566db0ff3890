#include "kalimkit/theme/IconDrawing.h"

#include <algorithm>
#include <cstddef>
#include <optional>

#include "kalimkit/gfx/Path.h"

namespace kalim {

namespace {

// Reads a drawing's numbers one after the other.
class IconReader {
public:
    IconReader(std::span<const std::int16_t> steps, const std::optional<gfx::Color>& tint)
        : _steps(steps), _tint(tint) {}

    bool isAtEnd() const { return _next == _steps.size(); }
    int whole() { return _steps[_next++]; }
    double hundredths() { return whole() / 100.0; }
    gfx::Point point() {
        const double x = hundredths();
        return {x, hundredths()};
    }
    gfx::Color color() {
        const double red = whole() / 255.0;
        const double green = whole() / 255.0;
        const double blue = whole() / 255.0;
        return _tint.value_or(gfx::Color{red, green, blue});
    }
    gfx::Color colorWithOpacity() {
        const gfx::Color opaque = color();
        return opaque.withAlpha(opaque.alpha * hundredths());
    }

private:
    std::span<const std::int16_t> _steps;
    std::optional<gfx::Color> _tint;
    std::size_t _next = 0;
};

void addCubic(gfx::Path& path, IconReader& reader) {
    const gfx::Point control1 = reader.point();
    const gfx::Point control2 = reader.point();
    path.cubicTo(control1, control2, reader.point());
}

void addRect(gfx::Path& path, IconReader& reader) {
    const gfx::Point corner = reader.point();
    const gfx::Point size = reader.point();
    path.addRect({corner.x, corner.y, size.x, size.y});
}

void addCircle(gfx::Path& path, IconReader& reader) {
    const gfx::Point center = reader.point();
    const double radius = reader.hundredths();
    path.addEllipse({center.x - radius, center.y - radius, 2 * radius, 2 * radius});
}

void fill(gfx::Context& context, const gfx::Path& path, IconReader& reader) {
    context.setFillColor(reader.colorWithOpacity());
    context.addPath(path);
    context.fill();
}

void stroke(gfx::Context& context, const gfx::Path& path, IconReader& reader) {
    context.setStrokeColor(reader.colorWithOpacity());
    context.setLineWidth(reader.hundredths());
    context.addPath(path);
    context.stroke();
}

// Each row of pixels in the colour of its middle; the path is a rectangle.
void fade(gfx::Context& context, const gfx::Path& path, IconReader& reader) {
    const gfx::Rect box = path.boundingBox();
    const gfx::Color color = reader.color();
    const double row = 1 / context.deviceScale();
    int stops = reader.whole();
    gfx::Point from = reader.point();
    double y = box.minY();
    while (--stops > 0) {
        const gfx::Point to = reader.point();
        const double end = box.minY() + to.x * box.size.height;
        for (; y < end; y += row) {
            const double place = (y + row / 2 - box.minY()) / box.size.height;
            const double share = (place - from.x) / (to.x - from.x);
            context.setFillColor(color.withAlpha(from.y + (to.y - from.y) * share));
            context.fillRect({box.minX(), y, box.size.width, row});
        }
        from = to;
    }
}

}  // namespace

void drawIcon(gfx::Context& context, const Icon& icon, const std::optional<gfx::Color>& tint) {
    const gfx::GraphicsStateGuard guard(context);
    context.setLineCap(gfx::LineCap::Round);
    context.setLineJoin(gfx::LineJoin::Round);
    gfx::Path path;
    for (IconReader reader(icon.steps, tint); !reader.isAtEnd();) {
        const int step = reader.whole();
        switch (step) {
            case IconMove:
                path.moveTo(reader.point());
                continue;
            case IconLine:
                path.lineTo(reader.point());
                continue;
            case IconCubic:
                addCubic(path, reader);
                continue;
            case IconClose:
                path.close();
                continue;
            case IconRect:
                addRect(path, reader);
                continue;
            case IconCircle:
                addCircle(path, reader);
                continue;
            case IconFill:
                fill(context, path, reader);
                break;
            case IconStroke:
                stroke(context, path, reader);
                break;
            default:
                fade(context, path, reader);
                break;
        }
        path = {};
    }
}

}  // namespace kalim
