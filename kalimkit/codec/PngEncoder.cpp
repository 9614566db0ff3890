#include <png.h>

#include <array>
#include <csetjmp>
#include <cstdio>
#include <new>

#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/EncodeSteps.h"

namespace kalim::codec {

namespace {

// Higher levels take several times as long for a few per cent.
constexpr int compressionLevel = 2;

// libpng leaves an error by longjmp, which skips destructors: everything that lives on the stack
// between a setjmp and the library is trivial, the rest are members.
class PngEncoder {
public:
    explicit PngEncoder(Bytes& bytes);
    ~PngEncoder() { png_destroy_write_struct(&_png, &_info); }
    PngEncoder(const PngEncoder&) = delete;
    PngEncoder& operator=(const PngEncoder&) = delete;

    bool encode(const PictureRows& rows, ByteSpan profile);
    bool takes(ByteSpan profile, bool isGrey);

    std::string error() const { return _message.data(); }

private:
    static void onError(png_structp png, png_const_charp reason);
    static void onBytes(png_structp png, png_bytep data, std::size_t count);
    void packGreys(bool withAlpha);
    void setProfile(ByteSpan profile);
    void writeHeader(const PictureRows& rows, ByteSpan profile);

    Bytes& _bytes;
    png_structp _png = nullptr;
    png_infop _info = nullptr;
    std::jmp_buf _failed{};
    std::array<char, 256> _message{};
    Bytes _row;
};

PngEncoder::PngEncoder(Bytes& bytes) : _bytes(bytes) {
    _png = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, onError,
                                   [](png_structp, png_const_charp) {});
    _info = _png ? png_create_info_struct(_png) : nullptr;
    if (!_info) std::snprintf(_message.data(), _message.size(), "out of memory");
}

void PngEncoder::onError(png_structp png, png_const_charp reason) {
    PngEncoder& encoder = *static_cast<PngEncoder*>(png_get_error_ptr(png));
    std::snprintf(encoder._message.data(), encoder._message.size(), "%s", reason);
    std::longjmp(encoder._failed, 1);
}

void PngEncoder::onBytes(png_structp png, png_bytep data, std::size_t count) {
    Bytes& bytes = static_cast<PngEncoder*>(png_get_io_ptr(png))->_bytes;
    bool fits = true;
    // An exception must not pass through the C library.
    try {
        bytes.insert(bytes.end(), data, data + count);
    } catch (const std::bad_alloc&) {
        fits = false;
    }
    if (!fits) png_error(png, "out of memory");
}

bool PngEncoder::encode(const PictureRows& rows, ByteSpan profile) {
    _row.resize(std::size_t{4} * static_cast<std::size_t>(rows.size().width));
    if (!_info || setjmp(_failed) != 0) return false;
    png_set_write_fn(_png, this, onBytes, nullptr);
    writeHeader(rows, profile);
    for (int y = 0; y < rows.size().height; ++y) {
        rows.read(y, _row.data());
        if (rows.isGrey()) packGreys(!rows.isOpaque());
        png_write_row(_png, _row.data());
    }
    png_write_end(_png, _info);
    return true;
}

bool PngEncoder::takes(ByteSpan profile, bool isGrey) {
    if (!_info || setjmp(_failed) != 0) return false;
    png_set_IHDR(_png, _info, 1, 1, 8, isGrey ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    setProfile(profile);
    return png_get_valid(_png, _info, PNG_INFO_iCCP) != 0;
}

void PngEncoder::setProfile(ByteSpan profile) {
    png_set_iCCP(_png, _info, "ICC profile", PNG_COMPRESSION_TYPE_BASE, profile.data(),
                 static_cast<png_uint_32>(profile.size()));
}

void PngEncoder::writeHeader(const PictureRows& rows, ByteSpan profile) {
    // The decoder's limits decide which pictures there are, not the library's own.
    png_set_user_limits(_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    const int colors = rows.isGrey() ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB;
    png_set_IHDR(_png, _info, static_cast<png_uint_32>(rows.size().width),
                 static_cast<png_uint_32>(rows.size().height), 8,
                 colors | (rows.isOpaque() ? 0 : PNG_COLOR_MASK_ALPHA), PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(_png, compressionLevel);
    png_set_filter(_png, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
    if (profile.empty()) {
        png_set_sRGB(_png, _info, PNG_sRGB_INTENT_PERCEPTUAL);
    } else {
        setProfile(profile);
    }
    png_write_info(_png, _info);
    if (rows.isGrey()) return;
    png_set_bgr(_png);
    if (rows.isOpaque()) png_set_filler(_png, 0, PNG_FILLER_AFTER);
}

// The library packs rows of three colours itself.
void PngEncoder::packGreys(bool withAlpha) {
    std::uint8_t* packed = _row.data();
    for (std::size_t i = 0; i < _row.size(); i += 4) {
        *packed++ = _row[i];
        if (withAlpha) *packed++ = _row[i + 3];
    }
}

}  // namespace

std::optional<std::string> encodePng(const PictureRows& rows, ByteSpan profile, Bytes& bytes) {
    bytes.clear();
    if (rows.size().isEmpty()) return "a picture without pixels cannot be written";
    PngEncoder encoder(bytes);
    if (encoder.encode(rows, profile)) return std::nullopt;
    bytes.clear();
    return "the picture cannot be written as PNG (" + encoder.error() + ")";
}

bool pngTakes(ByteSpan profile, bool isGrey) {
    Bytes nothing;
    return PngEncoder(nothing).takes(profile, isGrey);
}

std::optional<std::string> encodePng(const gfx::Bitmap& bitmap, Bytes& bytes) {
    return encodePng(BitmapRows(bitmap), {}, bytes);
}

}  // namespace kalim::codec
