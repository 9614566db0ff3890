#include "kalimkit/image/PictureCut.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <utility>

#include "kalimkit/image/MDrawImageUtil.h"

namespace kalim {

namespace {

int withinCircle(int quarterTurns) {
    return (quarterTurns % 4 + 4) % 4;
}

gfx::Rect wholeOf(gfx::PixelSize picture) {
    return {0, 0, static_cast<double>(picture.width), static_cast<double>(picture.height)};
}

}  // namespace

bool isCutOf(const PictureCut& cut, gfx::PixelSize picture) {
    if (cut.quarterTurns < 0 || cut.quarterTurns > 3) return false;
    if (!cut.crop) return true;
    const auto [origin, size] = *cut.crop;
    const auto isWhole = [](double value) { return std::floor(value) == value; };
    const std::array numbers{origin.x, origin.y, size.width, size.height};
    return std::ranges::all_of(numbers, isWhole) && size.width >= 1 && size.height >= 1 &&
           wholeOf(picture).contains(*cut.crop);
}

gfx::Rect partOf(const PictureCut& cut, gfx::PixelSize picture) {
    return cut.crop.value_or(wholeOf(picture));
}

gfx::PixelRect pixelPartOf(const PictureCut& cut, gfx::PixelSize picture) {
    const gfx::Rect part = partOf(cut, picture);
    return {static_cast<int>(part.minX()), static_cast<int>(part.minY()),
            static_cast<int>(part.size.width), static_cast<int>(part.size.height)};
}

bool isCropOf(const PictureCut& cut, gfx::PixelSize picture) {
    return partOf(cut, picture) != wholeOf(picture);
}

gfx::Rect turnedPart(const gfx::Rect& part, gfx::PixelSize picture, int quarterTurns) {
    const gfx::AffineTransform turn = gfx::AffineTransform::quarterTurn(quarterTurns);
    return turn.apply(part).offset(gfx::Point{} - turn.apply(wholeOf(picture)).origin);
}

gfx::Size turnedSize(gfx::Size size, int quarterTurns) {
    if (quarterTurns % 2 != 0) std::swap(size.width, size.height);
    return size;
}

gfx::ImageOrientation orientationAfter(int quarterTurns) {
    using enum gfx::ImageOrientation;
    static constexpr gfx::ImageOrientation orientations[] = {Up, Left, Down, Right};
    return orientations[withinCircle(quarterTurns)];
}

gfx::ImageRef turnedImage(const gfx::ImageRef& image, int quarterTurns) {
    if (!image || withinCircle(quarterTurns) == 0) return image;
    return MDrawImageUtil::fixOrientation(std::make_shared<gfx::Image>(
        image->raster(), image->scale(), orientationAfter(quarterTurns)));
}

}  // namespace kalim
