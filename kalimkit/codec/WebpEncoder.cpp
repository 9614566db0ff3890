#include <webp/encode.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "kalimkit/codec/AlphaRows.h"
#include "kalimkit/codec/Encode.h"

namespace kalim::codec {

namespace {

// Owns the library's copy of a picture, with straight alpha.
class WebpEncoder {
public:
    WebpEncoder() { _isReady = WebPPictureInit(&_picture) != 0; }
    ~WebpEncoder() { WebPPictureFree(&_picture); }
    WebpEncoder(const WebpEncoder&) = delete;
    WebpEncoder& operator=(const WebpEncoder&) = delete;

    bool encode(const gfx::Bitmap& bitmap, int quality, Bytes& bytes);
    std::string error() const;

private:
    static int onBytes(const std::uint8_t* data, std::size_t count, const WebPPicture* picture);
    bool takePixels(const gfx::Bitmap& bitmap);

    WebPPicture _picture{};
    bool _isReady = false;
};

int WebpEncoder::onBytes(const std::uint8_t* data, std::size_t count, const WebPPicture* picture) {
    // An exception must not pass through the C library.
    try {
        Bytes& bytes = *static_cast<Bytes*>(picture->custom_ptr);
        bytes.insert(bytes.end(), data, data + count);
    } catch (const std::bad_alloc&) {
        return 0;
    }
    return 1;
}

bool WebpEncoder::encode(const gfx::Bitmap& bitmap, int quality, Bytes& bytes) {
    WebPConfig config;
    if (!_isReady || !WebPConfigInit(&config)) return false;
    config.quality = static_cast<float>(std::clamp(quality, 1, 100));
    // The format keeps colours at half resolution; this keeps thin coloured strokes from smearing.
    config.use_sharp_yuv = 1;
    _picture.writer = onBytes;
    _picture.custom_ptr = &bytes;
    return takePixels(bitmap) && WebPEncode(&config, &_picture) != 0;
}

bool WebpEncoder::takePixels(const gfx::Bitmap& bitmap) {
    _picture.use_argb = 1;
    _picture.width = bitmap.width();
    _picture.height = bitmap.height();
    if (std::max(bitmap.width(), bitmap.height()) > longestWebpSide) {
        _picture.error_code = VP8_ENC_ERROR_BAD_DIMENSION;
        return false;
    }
    if (!WebPPictureAlloc(&_picture)) return false;
    Bytes straight(bitmap.stride());
    for (int y = 0; y < bitmap.height(); ++y) {
        straightenRow(bitmap.row(y), straight.data(), static_cast<std::size_t>(bitmap.width()));
        std::uint32_t* target = _picture.argb + std::ptrdiff_t{y} * _picture.argb_stride;
        for (std::size_t i = 0; i < straight.size(); i += 4) {
            *target++ = std::uint32_t{straight[i + 3]} << 24 |
                        std::uint32_t{straight[i + 2]} << 16 | std::uint32_t{straight[i + 1]} << 8 |
                        straight[i];
        }
    }
    return true;
}

std::string WebpEncoder::error() const {
    switch (_picture.error_code) {
        case VP8_ENC_ERROR_BAD_DIMENSION:
            return "a side is longer than " + std::to_string(longestWebpSide) + " pixels";
        case VP8_ENC_ERROR_OUT_OF_MEMORY:
        case VP8_ENC_ERROR_BITSTREAM_OUT_OF_MEMORY:
        case VP8_ENC_ERROR_BAD_WRITE:
            return "out of memory";
        default:
            return "error " + std::to_string(_picture.error_code) + " of the library";
    }
}

}  // namespace

std::optional<std::string> encodeWebp(const gfx::Bitmap& bitmap, int quality, Bytes& bytes) {
    bytes.clear();
    if (bitmap.isEmpty()) return "a picture without pixels cannot be written";
    WebpEncoder encoder;
    if (encoder.encode(bitmap, quality, bytes)) return std::nullopt;
    bytes.clear();
    return "the picture cannot be written as WebP (" + encoder.error() + ")";
}

}  // namespace kalim::codec
