#include "kalimkit/codec/PixelMap.h"

#include <algorithm>
#include <cstdlib>

namespace kalim::codec {

PixelMap PixelMap::upright(gfx::ImageOrientation orientation, gfx::PixelSize seen) {
    const gfx::Size size{static_cast<double>(seen.width), static_cast<double>(seen.height)};
    const gfx::AffineTransform t = gfx::uprightTransform(orientation, size);
    return {static_cast<int>(t.a), static_cast<int>(t.c),  static_cast<int>(t.b),
            static_cast<int>(t.d), static_cast<int>(t.tx), static_cast<int>(t.ty)};
}

PixelMap PixelMap::turned(int quarterTurns, gfx::PixelSize size) {
    switch (quarterTurns & 3) {
        case 1:
            return {0, 1, -1, 0, 0, size.width};
        case 2:
            return {-1, 0, 0, -1, size.width, size.height};
        case 3:
            return {0, -1, 1, 0, size.height, 0};
        default:
            return {};
    }
}

PixelMap PixelMap::then(const PixelMap& next) const {
    return {next.xx * xx + next.xy * yx,           next.xx * xy + next.xy * yy,
            next.yx * xx + next.yy * yx,           next.yx * xy + next.yy * yy,
            next.xx * dx + next.xy * dy + next.dx, next.yx * dx + next.yy * dy + next.dy};
}

// The matrix of turns and mirrors is its own transpose's inverse.
PixelMap PixelMap::inverse() const {
    return {xx, yx, xy, yy, -(xx * dx + yx * dy), -(xy * dx + yy * dy)};
}

gfx::PixelRect PixelMap::apply(const gfx::PixelRect& rect) const {
    const int x1 = xx * rect.x + xy * rect.y + dx;
    const int y1 = yx * rect.x + yy * rect.y + dy;
    const int x2 = x1 + xx * rect.width + xy * rect.height;
    const int y2 = y1 + yx * rect.width + yy * rect.height;
    return {std::min(x1, x2), std::min(y1, y2), std::abs(x2 - x1), std::abs(y2 - y1)};
}

gfx::PixelSize withExchangedSides(gfx::PixelSize size, bool exchanges) {
    return exchanges ? gfx::PixelSize{size.height, size.width} : size;
}

gfx::PixelRect intersection(const gfx::PixelRect& first, const gfx::PixelRect& second) {
    const int x = std::max(first.x, second.x);
    const int y = std::max(first.y, second.y);
    const int right = std::min(first.x + first.width, second.x + second.width);
    const int bottom = std::min(first.y + first.height, second.y + second.height);
    return {x, y, std::max(right - x, 0), std::max(bottom - y, 0)};
}

}  // namespace kalim::codec
