#include "kalimkit/backend/html/HtmlRaster.h"

#include <utility>

#include "kalimkit/backend/html/HtmlImports.h"

namespace kalim::gfx {

std::shared_ptr<const HtmlRaster> HtmlRaster::adopt(int picture) {
    if (picture == 0) return nullptr;
    return std::shared_ptr<const HtmlRaster>(new HtmlRaster(picture));
}

std::shared_ptr<const HtmlRaster> HtmlRaster::of(const Image& image) {
    if (auto own = std::dynamic_pointer_cast<const HtmlRaster>(image.raster())) return own;
    const BitmapRef pixels = image.pixels();
    return adopt(page::pictureMake(pixels->data(), pixels->width(), pixels->height()));
}

HtmlRaster::HtmlRaster(int picture)
    : _picture(picture), _size{page::pictureWidth(picture), page::pictureHeight(picture)} {}

HtmlRaster::~HtmlRaster() {
    page::release(_picture);
}

BitmapRef HtmlRaster::pixels() const {
    if (BitmapRef kept = _pixels.lock()) return kept;
    Bitmap bitmap(_size.width, _size.height);
    page::pictureRead(_picture, bitmap.data());
    auto pixels = std::make_shared<const Bitmap>(std::move(bitmap));
    _pixels = pixels;
    return pixels;
}

}  // namespace kalim::gfx
