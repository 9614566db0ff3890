#include "kalimkit/image/PictureReductions.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

// Reading so many pixels takes less than the time of a frame.
constexpr std::int64_t cheapPixels = 4'000'000;

// Rounded down: a little more than two pixels for one are averaged, a little less would be sampled.
int halved(int side) {
    return std::max(side / 2, 1);
}

// Null where no surface of the size can be had.
gfx::ImageRef half(const gfx::ImageRef& image) {
    const gfx::PixelSize pixels = image->pixelSize();
    const gfx::Size size{static_cast<double>(halved(pixels.width)),
                         static_cast<double>(halved(pixels.height))};
    const auto surface = ui::Environment::current().device().makeSurface(size, 1, false);
    if (!surface) return nullptr;
    surface->context().setInterpolation(gfx::Interpolation::High);
    surface->context().drawImage(*image, {{}, size});
    return surface->makeImage();
}

}  // namespace

void PictureReductions::take(gfx::ImageRef picture) {
    _picture = std::move(picture);
    release();
}

gfx::ImageRef PictureReductions::atLeast(double width, Making making) {
    if (!_picture) return nullptr;
    std::size_t wanted = 0;
    for (int side = _picture->pixelSize().width; side > 1 && halved(side) >= width;
         side = halved(side)) {
        ++wanted;
    }
    if (wanted == 0) return _picture;
    if (_copies.size() < wanted) _copies.resize(wanted);
    // From the closest larger one that there is; those in between are not kept.
    std::size_t there = wanted;
    while (there > 0 && !_copies[there - 1])
        --there;
    gfx::ImageRef image = there == 0 ? _picture : _copies[there - 1];
    const gfx::PixelSize read = image->pixelSize();
    if (there < wanted && making == Making::Cheap &&
        std::int64_t{read.width} * read.height > cheapPixels) {
        return nullptr;
    }
    for (; there < wanted && image; ++there)
        image = half(image);
    return _copies[wanted - 1] = image;
}

}  // namespace kalim
