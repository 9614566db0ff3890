#include <png.h>

#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

#include "kalimkit/codec/AlphaRows.h"
#include "kalimkit/codec/ColorConversion.h"
#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/ExifOrientation.h"

namespace kalim::codec {

namespace {

using std::string_view_literals::operator""sv;

constexpr const char* endsTooEarly = "the PNG data end too early";

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
    bool holdsEnoughData() const;
    // Says why the last step failed.
    std::string error() const { return _message.data(); }
    gfx::ImageOrientation orientation() const;
    // Empty when the file has none; lives as long as the decoder.
    ByteSpan profile() const;
    ColorConversion::Samples samples() const { return _samples; }

private:
    static void onError(png_structp png, png_const_charp reason);
    static void onBytesWanted(png_structp png, png_bytep target, std::size_t count);
    void limitSideInformation();
    void askForBgra();

    ByteSpan _rest;
    png_structp _png = nullptr;
    png_infop _info = nullptr;
    std::jmp_buf _failed{};
    std::array<char, 256> _message{};
    std::vector<png_bytep> _rows;
    bool _hasAlpha = false;
    // Of all rows as the file packs them.
    std::uint64_t _rowBytes = 0;
    ColorConversion::Samples _samples = ColorConversion::Samples::Bgra;
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
    // The library says so in both ways.
    if (std::string_view(reason).ends_with("ut of memory")) {
        std::snprintf(decoder._message.data(), decoder._message.size(), notEnoughMemory);
    } else if (decoder._message[0] == '\0') {
        std::snprintf(decoder._message.data(), decoder._message.size(),
                      "the PNG data are damaged (%s)", reason);
    }
    std::longjmp(decoder._failed, 1);
}

void PngDecoder::onBytesWanted(png_structp png, png_bytep target, std::size_t count) {
    PngDecoder& decoder = *static_cast<PngDecoder*>(png_get_io_ptr(png));
    if (count > decoder._rest.size()) {
        std::snprintf(decoder._message.data(), decoder._message.size(), endsTooEarly);
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
    limitSideInformation();
    png_read_info(_png, _info);
    _rowBytes = std::uint64_t{png_get_rowbytes(_png, _info)} * height();
    askForBgra();
    return true;
}

// Chunks that nothing here asks for are passed over unread: a small one can unpack to gigabytes.
void PngDecoder::limitSideInformation() {
    constexpr png_alloc_size_t maxUnpackedBytes = png_alloc_size_t{8} << 20;
    constexpr std::string_view unread = "hIST\0pCAL\0sPLT\0tEXt\0zTXt\0iTXt"sv;
    constexpr int unreadCount = 6;
    png_set_chunk_malloc_max(_png, maxUnpackedBytes);
    png_set_keep_unknown_chunks(_png, PNG_HANDLE_CHUNK_NEVER,
                                reinterpret_cast<png_const_bytep>(unread.data()), unreadCount);
}

// A few bytes may not ask for gigabytes of pixels: deflate packs at most 1032 bytes into one, and
// the rows of an interlaced picture are no shorter in all.
bool PngDecoder::holdsEnoughData() const {
    constexpr std::uint64_t maxRatio = 1032;
    return _rowBytes / maxRatio <= _rest.size();
}

void PngDecoder::askForBgra() {
    const bool isGrey = (png_get_color_type(_png, _info) & PNG_COLOR_MASK_COLOR) == 0;
    _samples = isGrey ? ColorConversion::Samples::GreyBgra : ColorConversion::Samples::Bgra;
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

ByteSpan PngDecoder::profile() const {
    png_charp name = nullptr;
    int compression = 0;
    png_bytep data = nullptr;
    png_uint_32 size = 0;
    if (!png_get_iCCP(_png, _info, &name, &compression, &data, &size)) return {};
    return {data, size};
}

void finishColors(const PngDecoder& decoder, gfx::Bitmap& bitmap) {
    const auto conversion = ColorConversion::make(decoder.profile(), decoder.samples());
    if (!conversion && !decoder.hasAlpha()) return;
    const auto pixelCount = static_cast<std::size_t>(bitmap.width());
    for (int y = 0; y < bitmap.height(); ++y) {
        if (conversion) conversion->convertRow(bitmap.row(y), bitmap.row(y), pixelCount);
        if (decoder.hasAlpha()) premultiplyRow(bitmap.row(y), pixelCount);
    }
}

}  // namespace

DecodeResult decodePng(ByteSpan bytes, const DecodeLimits& limits, Coloring coloring) {
    DecodeResult result;
    PngDecoder decoder(bytes);
    if (!decoder.readHeader()) {
        result.error = decoder.error();
        return result;
    }
    result.error = sizeProblem(decoder.width(), decoder.height(), limits);
    if (!result.error && !decoder.holdsEnoughData()) result.error = endsTooEarly;
    if (result.error || !allocatePixels(result, decoder.width(), decoder.height(), limits)) {
        return result;
    }
    if (!decoder.readPixels(result.bitmap)) result.error = decoder.error();
    if (!result.error && coloring == Coloring::Srgb) finishColors(decoder, result.bitmap);
    result.orientation = decoder.orientation();
    return result;
}

FileColors pngColors(ByteSpan bytes) {
    PngDecoder decoder(bytes);
    if (!decoder.readHeader()) return {};
    const ByteSpan profile = decoder.profile();
    return {{profile.begin(), profile.end()}, decoder.samples(), true};
}

}  // namespace kalim::codec
