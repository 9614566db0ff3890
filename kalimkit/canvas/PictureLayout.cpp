#include "kalimkit/canvas/PictureLayout.h"

#include <cmath>
#include <utility>

namespace kalim {

gfx::Rect centredRect(gfx::Size size, const gfx::Rect& box) {
    return {{box.midX() - size.width * 0.5, box.midY() - size.height * 0.5}, size};
}

gfx::AffineTransform canvasToView(gfx::Point center, gfx::Point seenAt, double scale, double angle,
                                  int quarterTurns) {
    const auto placed =
        gfx::AffineTransform::translation(seenAt).rotated(angle).scaled(scale, scale);
    if (quarterTurns == 0) return placed.translated(-center.x, -center.y);
    return gfx::AffineTransform::quarterTurn(quarterTurns)
        .concat(placed)
        .translated(-center.x, -center.y);
}

gfx::Rect pixelAlignedRect(const gfx::Rect& rect, const gfx::AffineTransform& toSurface,
                           double scale, gfx::PixelSize raster) {
    const bool isTurned = toSurface.a == 0 && toSurface.d == 0;
    if (!isTurned && (toSurface.b != 0 || toSurface.c != 0)) return rect;
    const gfx::Rect shown = toSurface.apply(rect);
    const gfx::Size pixels = shown.size * scale;
    if (isTurned) std::swap(raster.width, raster.height);
    if (std::abs(pixels.width - raster.width) > 0.5 ||
        std::abs(pixels.height - raster.height) > 0.5) {
        return rect;
    }
    const gfx::Rect aligned(std::round(shown.minX() * scale) / scale,
                            std::round(shown.minY() * scale) / scale, raster.width / scale,
                            raster.height / scale);
    return toSurface.inverted().apply(aligned);
}

gfx::Rect pixelsInside(const gfx::Rect& rect, const gfx::AffineTransform& toPixels) {
    // Of a pixel; forgives what transforms lose.
    constexpr double tolerance = 1e-4;
    const bool keepsAxes =
        (toPixels.a == 0 && toPixels.d == 0) || (toPixels.b == 0 && toPixels.c == 0);
    if (!keepsAxes || !toPixels.isInvertible()) return rect;
    const gfx::Rect shown = toPixels.apply(rect);
    const double left = std::ceil(shown.minX() - tolerance);
    const double top = std::ceil(shown.minY() - tolerance);
    const gfx::Rect pixels(left, top, std::floor(shown.maxX() + tolerance) - left,
                           std::floor(shown.maxY() + tolerance) - top);
    return pixels.isEmpty() ? rect : toPixels.inverted().apply(pixels);
}

gfx::Rect alongPicture(const gfx::Rect& content, const gfx::Rect& picture,
                       const gfx::Rect& shownPicture) {
    const auto moved = [](double edge, double from, double to) { return edge == from ? to : edge; };
    return gfx::Rect::spanning({moved(content.minX(), picture.minX(), shownPicture.minX()),
                                moved(content.minY(), picture.minY(), shownPicture.minY())},
                               {moved(content.maxX(), picture.maxX(), shownPicture.maxX()),
                                moved(content.maxY(), picture.maxY(), shownPicture.maxY())});
}

bool fillsView(gfx::Size picture, gfx::Size view) {
    // Differences are deliberately truncated to whole points.
    return std::abs(std::trunc(picture.width - view.width)) < 4 &&
           std::abs(std::trunc(picture.height - view.height)) < 6;
}

}  // namespace kalim
