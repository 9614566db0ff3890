#include <webp/encode.h>

#include <algorithm>
#include <cstring>
#include <new>

#include "kalimkit/codec/ColorProfiles.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/EncodeSteps.h"

namespace kalim::codec {

namespace {

// From 0, the fastest, to 9: higher ones take several times as long for a few per cent.
constexpr int losslessEffort = 2;

// Owns the library's copy of a picture, with straight alpha.
class WebpEncoder {
public:
    WebpEncoder() { _isReady = WebPPictureInit(&_picture) != 0; }
    ~WebpEncoder() { WebPPictureFree(&_picture); }
    WebpEncoder(const WebpEncoder&) = delete;
    WebpEncoder& operator=(const WebpEncoder&) = delete;

    bool encode(const PictureRows& rows, std::optional<int> quality, Bytes& bytes);
    std::string error() const;

private:
    static int onBytes(const std::uint8_t* data, std::size_t count, const WebPPicture* picture);
    bool takePixels(const PictureRows& rows);

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

bool WebpEncoder::encode(const PictureRows& rows, std::optional<int> quality, Bytes& bytes) {
    WebPConfig config;
    if (!_isReady || !WebPConfigInit(&config)) return false;
    if (!quality && !WebPConfigLosslessPreset(&config, losslessEffort)) return false;
    if (!quality) config.exact = 1;
    if (quality) config.quality = static_cast<float>(std::clamp(*quality, 1, 100));
    // The format keeps colours at half resolution; this keeps thin coloured strokes from smearing.
    config.use_sharp_yuv = 1;
    _picture.writer = onBytes;
    _picture.custom_ptr = &bytes;
    return takePixels(rows) && WebPEncode(&config, &_picture) != 0;
}

bool WebpEncoder::takePixels(const PictureRows& rows) {
    _picture.use_argb = 1;
    _picture.width = rows.size().width;
    _picture.height = rows.size().height;
    if (std::max(_picture.width, _picture.height) > longestWebpSide) {
        _picture.error_code = VP8_ENC_ERROR_BAD_DIMENSION;
        return false;
    }
    if (!WebPPictureAlloc(&_picture)) return false;
    Bytes straight(std::size_t{4} * static_cast<std::size_t>(_picture.width));
    for (int y = 0; y < _picture.height; ++y) {
        rows.read(y, straight.data());
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

std::optional<std::string> encodeWebp(const PictureRows& rows, ByteSpan profile,
                                      std::optional<int> quality, Bytes& bytes) {
    bytes.clear();
    if (rows.size().isEmpty()) return "a picture without pixels cannot be written";
    WebpEncoder encoder;
    if (encoder.encode(rows, quality, bytes)) {
        addProfile(bytes, profile.empty() ? ByteSpan(srgbProfile(false)) : profile);
        return std::nullopt;
    }
    bytes.clear();
    return "the picture cannot be written as WebP (" + encoder.error() + ")";
}

std::optional<std::string> encodeWebp(const gfx::Bitmap& bitmap, int quality, Bytes& bytes) {
    return encodeWebp(BitmapRows(bitmap), {}, quality, bytes);
}

}  // namespace kalim::codec
