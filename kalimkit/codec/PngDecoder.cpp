#include <png.h>

#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <vector>

#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/ExifOrientation.h"

namespace kalim::codec {

namespace {

// libpng leaves an error by longjmp, which skips destructors: everything that lives on the stack
// between a setjmp and the library is trivial, the rest are members.
class PngDecoder {
public:
    explicit PngDecoder(ByteSpan bytes);
    ~PngDecoder() { png_destroy_read_struct(&_png, &_info, nullptr); }
    PngDecoder(const PngDecoder&) = delete;
    PngDecoder& operator=(const PngDecoder&) = delete;

    bool readHeader();
    bool readPixels(gfx::Bitmap& bitmap);

    std::uint32_t width() const { return png_get_image_width(_png, _info); }
    std::uint32_t height() const { return png_get_image_height(_png, _info); }
    // True when the file may hold pixels that are not opaque.
    bool hasAlpha() const { return _hasAlpha; }
    // Why the last step failed.
    std::string error() const { return _message.data(); }
    gfx::ImageOrientation orientation() const;

private:
    static void onError(png_structp png, png_const_charp reason);
    static void onBytesWanted(png_structp png, png_bytep target, std::size_t count);
    void askForBgra();

    ByteSpan _rest;
    png_structp _png = nullptr;
    png_infop _info = nullptr;
    std::jmp_buf _failed{};
    std::array<char, 256> _message{};
    std::vector<png_bytep> _rows;
    bool _hasAlpha = false;
};

PngDecoder::PngDecoder(ByteSpan bytes) : _rest(bytes) {
    // Warnings are about side information, such as a colour profile that is slightly wrong.
    _png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, onError,
                                  [](png_structp, png_const_charp) {});
    _info = _png ? png_create_info_struct(_png) : nullptr;
    if (!_info) std::snprintf(_message.data(), _message.size(), "out of memory");
}

void PngDecoder::onError(png_structp png, png_const_charp reason) {
    PngDecoder& decoder = *static_cast<PngDecoder*>(png_get_error_ptr(png));
    if (decoder._message[0] == '\0') {
        std::snprintf(decoder._message.data(), decoder._message.size(),
                      "the PNG data are damaged (%s)", reason);
    }
    std::longjmp(decoder._failed, 1);
}

void PngDecoder::onBytesWanted(png_structp png, png_bytep target, std::size_t count) {
    PngDecoder& decoder = *static_cast<PngDecoder*>(png_get_io_ptr(png));
    if (count > decoder._rest.size()) {
        std::snprintf(decoder._message.data(), decoder._message.size(),
                      "the PNG data end too early");
        png_error(png, "");
    }
    std::memcpy(target, decoder._rest.data(), count);
    decoder._rest = decoder._rest.subspan(count);
}

bool PngDecoder::readHeader() {
    if (!_info || setjmp(_failed) != 0) return false;
    png_set_read_fn(_png, this, onBytesWanted);
    // The decoder's own limits are held against the header, with a message of their own.
    png_set_user_limits(_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_read_info(_png, _info);
    askForBgra();
    return true;
}

void PngDecoder::askForBgra() {
    _hasAlpha = (png_get_color_type(_png, _info) & PNG_COLOR_MASK_ALPHA) != 0 ||
                png_get_valid(_png, _info, PNG_INFO_tRNS) != 0;
    png_set_expand(_png);
    png_set_scale_16(_png);
    png_set_gray_to_rgb(_png);
    png_set_bgr(_png);
    png_set_add_alpha(_png, 255, PNG_FILLER_AFTER);
    png_set_interlace_handling(_png);
    png_read_update_info(_png, _info);
}

bool PngDecoder::readPixels(gfx::Bitmap& bitmap) {
    _rows.resize(static_cast<std::size_t>(bitmap.height()));
    for (int y = 0; y < bitmap.height(); ++y) {
        _rows[static_cast<std::size_t>(y)] = bitmap.row(y);
    }
    if (setjmp(_failed) != 0) return false;
    png_read_image(_png, _rows.data());
    // Reads on to the last chunk: the orientation may stand behind the pixels.
    png_read_end(_png, _info);
    return true;
}

gfx::ImageOrientation PngDecoder::orientation() const {
    png_bytep exif = nullptr;
    png_uint_32 size = 0;
    png_get_eXIf_1(_png, _info, &size, &exif);
    return exifOrientation(ByteSpan(exif, size));
}

void premultiply(gfx::Bitmap& bitmap) {
    for (std::uint8_t *pixel = bitmap.data(), *end = pixel + bitmap.byteCount(); pixel != end;
         pixel += 4) {
        const unsigned alpha = pixel[3];
        if (alpha == 255) continue;
        for (int i = 0; i < 3; ++i) {
            pixel[i] = static_cast<std::uint8_t>((pixel[i] * alpha + 127) / 255);
        }
    }
}

}  // namespace

DecodeResult decodePng(ByteSpan bytes, const DecodeLimits& limits) {
    DecodeResult result;
    PngDecoder decoder(bytes);
    if (!decoder.readHeader()) {
        result.error = decoder.error();
        return result;
    }
    if (!allocatePixels(result, decoder.width(), decoder.height(), limits)) return result;
    if (!decoder.readPixels(result.bitmap)) result.error = decoder.error();
    if (!result.error && decoder.hasAlpha()) premultiply(result.bitmap);
    result.orientation = decoder.orientation();
    return result;
}

}  // namespace kalim::codec
