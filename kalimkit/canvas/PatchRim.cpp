#include "kalimkit/canvas/PatchRim.h"

#include <algorithm>
#include <cmath>

#include "kalimkit/shapes/WholePixels.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Pixels that reducing, smoothing and enlarging mix at most, on either side, each counted in the
// largest of the pixels that take part.
constexpr double mixedPixels = 4;

// From canvas points to the pixels of the picture as it was handed in.
gfx::AffineTransform toSource(const DrawnPicture& picture) {
    const gfx::PixelSize pixels = picture.source->pixelSize();
    return gfx::AffineTransform::scaling(pixels.width / picture.rect.size.width,
                                         pixels.height / picture.rect.size.height)
        .translated(-picture.rect.minX(), -picture.rect.minY());
}

// A part of the picture, pixel for pixel, with the patches laid into it.
struct Strip {
    gfx::ImageRef image;
    gfx::Rect rect;
};

Strip stripOf(const DrawnPicture& picture, const gfx::Rect& part,
              const std::function<void(gfx::Context&)>& layPatches) {
    const gfx::PixelSize pixels = picture.source->pixelSize();
    const gfx::Rect whole(0, 0, pixels.width, pixels.height);
    const gfx::Rect cut = toSource(picture).apply(part).roundedOut().intersection(whole);
    if (cut.isEmpty()) return {};
    const auto surface = ui::Environment::current().device().makeSurface(cut.size, 1, false);
    if (!surface) return {};
    gfx::Context& context = surface->context();
    context.translate(-cut.minX(), -cut.minY());
    context.setInterpolation(gfx::Interpolation::None);
    context.drawImage(*picture.source, whole);
    context.concat(toSource(picture));
    layPatches(context);
    return {surface->makeImage(), toSource(picture).inverted().apply(cut)};
}

}  // namespace

gfx::AffineTransform toDevicePixels(const gfx::Context& context) {
    const double scale = context.deviceScale();
    return context.transform().concat(gfx::AffineTransform::scaling(scale, scale));
}

double rimWidth(const DrawnPicture& picture, const gfx::AffineTransform& toPixels) {
    // There is no copy where there was no room for one.
    if (!picture.source || !picture.copy) return 0;
    if (picture.rect.isEmpty() || !toPixels.isInvertible()) return 0;
    const gfx::Size shown = toPixels.apply(picture.rect).size;
    const gfx::PixelSize raster = picture.source->pixelSize();
    const bool isPixelForPixel = picture.copy == picture.source &&
                                 std::abs(shown.width - raster.width) <= 0.5 &&
                                 std::abs(shown.height - raster.height) <= 0.5;
    if (isPixelForPixel) return 0;
    const auto pixelOf = [&](gfx::PixelSize pixels) {
        return std::max(picture.rect.size.width / pixels.width,
                        picture.rect.size.height / pixels.height);
    };
    const double devicePixel = 1 / std::sqrt(std::abs(toPixels.determinant()));
    return mixedPixels *
           std::max({devicePixel, pixelOf(raster), pixelOf(picture.copy->pixelSize())});
}

// At the corners they overlap, so that a pixel between two of them is covered by one as a whole.
std::vector<gfx::Rect> rimSides(const gfx::Rect& patch, double width) {
    const gfx::Rect outer = patch.inset(-width, -width);
    return {gfx::Rect(outer.minX(), outer.minY(), outer.size.width, width),
            gfx::Rect(outer.minX(), patch.maxY(), outer.size.width, width),
            gfx::Rect(outer.minX(), outer.minY(), width, outer.size.height),
            gfx::Rect(patch.maxX(), outer.minY(), width, outer.size.height)};
}

// By pieces of the edges: one box around all of an edge that runs aslant would be mostly what the
// patch covers anyway.
std::vector<gfx::Rect> rimSides(const gfx::Polygon& patch, double width) {
    constexpr double widthsOfPiece = 12;
    constexpr double mostPieces = 16;
    std::vector<gfx::Rect> sides;
    for (std::size_t i = 0; i < patch.size(); ++i) {
        const gfx::Point from = patch[i];
        const gfx::Point way = patch[(i + 1) % patch.size()] - from;
        const double pieces = std::clamp(
            std::ceil(std::hypot(way.x, way.y) / (widthsOfPiece * width)), 1.0, mostPieces);
        for (double piece = 0; piece < pieces; ++piece) {
            sides.push_back(gfx::Rect::spanning(from + way * (piece / pieces),
                                                from + way * ((piece + 1) / pieces))
                                .inset(-width, -width));
        }
    }
    return sides;
}

void drawRim(gfx::Context& context, const DrawnPicture& picture,
             const std::vector<gfx::Rect>& sides, double width,
             const std::function<void(gfx::Context&)>& layPatches) {
    const gfx::AffineTransform toPixels = toDevicePixels(context);
    const gfx::Rect visible = context.clipBounds();
    for (const gfx::Rect& side : sides) {
        const gfx::Rect seen = side.intersection(picture.rect);
        if (seen.isEmpty() || !seen.intersects(visible)) continue;
        // As far again, so that nothing beyond the strip is missed where it is mixed.
        const Strip strip = stripOf(picture, side.inset(-width, -width), layPatches);
        if (!strip.image) continue;
        const gfx::GraphicsStateGuard guard(context);
        context.clipToRect(wholePixels(seen, toPixels));
        context.setFillColor(picture.groundColor);
        context.fillRect(picture.ground);
        context.setInterpolation(picture.interpolation);
        context.drawImage(*strip.image, strip.rect);
    }
}

}  // namespace kalim
