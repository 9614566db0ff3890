#include "kalimkit/host/files/PictureOrigins.h"

#include <utility>

#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/image/UprightBitmap.h"

namespace kalim {

gfx::ImageRef PictureOrigins::make(gfx::Device& device, OpenedFile& opened) {
    if (opened.picture.bitmap.isEmpty()) return nullptr;
    if (!opened.document) {
        return make(device, std::move(opened.picture), opened.bytes, opened.picturePath);
    }
    const std::string data = std::exchange(opened.document->picture->data, {});
    return make(device, std::move(opened.picture),
                {reinterpret_cast<const std::uint8_t*>(data.data()), data.size()},
                opened.picturePath);
}

gfx::ImageRef PictureOrigins::make(gfx::Device& device, codec::DecodeResult decoded,
                                   codec::ByteSpan file, const std::string& path) {
    // A canvas turns a picture upright, which would make it another object.
    if (decoded.orientation != gfx::ImageOrientation::Up)
        decoded.bitmap = uprightBitmap(decoded.bitmap, decoded.orientation);
    const gfx::ImageRef made =
        device.makeImage(std::move(decoded.bitmap), 1, gfx::ImageOrientation::Up);
    if (!made) return nullptr;
    gfx::ImageRef image = std::make_shared<const gfx::Image>(made->raster(), made->scale(),
                                                             made->orientation(), decoded.grid);
    std::erase_if(_entries, [](const Entry& entry) { return entry.image.expired(); });
    const char* const mediaType = codec::mediaType(codec::fileFormat(file));
    // What was imported is written as its pixels alone.
    if (!mediaType) return image;
    auto origin = std::make_shared<Origin>();
    origin->mediaType = mediaType;
    origin->data.assign(file.begin(), file.end());
    origin->path = path;
    _entries.push_back({image, std::move(origin)});
    return image;
}

std::shared_ptr<const PictureOrigins::Origin> PictureOrigins::find(
    const gfx::ImageRef& image) const {
    for (const Entry& entry : _entries) {
        if (image && entry.image.lock() == image) return entry.origin;
    }
    return nullptr;
}

}  // namespace kalim
