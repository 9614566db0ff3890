#include <algorithm>
#include <string>
#include <utility>

#include "kalimkit/Editor.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/image/UprightBitmap.h"

// What goes into an editor and comes out of it.

namespace kalim {

namespace {

std::shared_ptr<const gfx::Bitmap> bitmapOf(codec::DecodeResult decoded, std::string* error) {
    if (decoded.error) {
        if (error) *error = *decoded.error;
        return nullptr;
    }
    if (decoded.orientation != gfx::ImageOrientation::Up) {
        decoded.bitmap = uprightBitmap(decoded.bitmap, decoded.orientation);
    }
    return std::make_shared<gfx::Bitmap>(std::move(decoded.bitmap));
}

}  // namespace

Editor::Picture Editor::Picture::read(const std::string& path, std::string* error) {
    Picture picture;
    picture._bitmap = bitmapOf(codec::decodeFile(path), error);
    return picture;
}

Editor::Picture Editor::Picture::decode(const void* bytes, std::size_t count, std::string* error) {
    Picture picture;
    const codec::ByteSpan file(static_cast<const std::uint8_t*>(bytes), count);
    picture._bitmap = bitmapOf(codec::decode(file, "the picture"), error);
    return picture;
}

Editor::Picture Editor::Picture::copy(const std::uint8_t* pixels, int width, int height,
                                      std::size_t stride, Pixels kind) {
    Picture picture;
    if (width < 1 || height < 1) return picture;
    auto bitmap = std::make_shared<gfx::Bitmap>(gfx::Bitmap::unwritten(width, height));
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* const from = pixels + static_cast<std::size_t>(y) * stride;
        std::uint8_t* const to = bitmap->row(y);
        std::copy_n(from, bitmap->stride(), to);
        for (int x = 0; kind == Pixels::Rgba && x < width; ++x) {
            const std::uint8_t* const pixel = from + std::ptrdiff_t{4} * x;
            const auto share = [](std::uint8_t byte) { return byte / 255.0; };
            bitmap->setColorAt(
                x, y, {share(pixel[0]), share(pixel[1]), share(pixel[2]), share(pixel[3])});
        }
    }
    picture._bitmap = std::move(bitmap);
    return picture;
}

int Editor::Picture::width() const {
    return _bitmap ? _bitmap->width() : 0;
}

int Editor::Picture::height() const {
    return _bitmap ? _bitmap->height() : 0;
}

const std::uint8_t* Editor::Picture::pixels() const {
    return _bitmap ? _bitmap->data() : nullptr;
}

std::vector<std::uint8_t> Editor::Picture::png() const {
    codec::Bytes file;
    if (_bitmap) codec::encodePng(*_bitmap, file);
    return file;
}

std::vector<std::uint8_t> Editor::Picture::jpeg(int quality) const {
    codec::Bytes file;
    if (_bitmap) codec::encodeJpeg(*_bitmap, quality, file);
    return file;
}

}  // namespace kalim
