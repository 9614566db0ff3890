#include <png.h>

#include <array>
#include <csetjmp>
#include <cstdio>
#include <new>

#include "kalimkit/codec/AlphaRows.h"
#include "kalimkit/codec/Encode.h"

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

    bool encode(const gfx::Bitmap& bitmap);

    std::string error() const { return _message.data(); }

private:
    static void onError(png_structp png, png_const_charp reason);
    static void onBytes(png_structp png, png_bytep data, std::size_t count);
    void writeHeader(const gfx::Bitmap& bitmap);

    Bytes& _bytes;
    png_structp _png = nullptr;
    png_infop _info = nullptr;
    std::jmp_buf _failed{};
    std::array<char, 256> _message{};
    Bytes _row;
    bool _opaque = false;
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

bool PngEncoder::encode(const gfx::Bitmap& bitmap) {
    _opaque = isOpaque(bitmap);
    if (!_opaque) _row.resize(bitmap.stride());
    if (!_info || setjmp(_failed) != 0) return false;
    png_set_write_fn(_png, this, onBytes, nullptr);
    writeHeader(bitmap);
    for (int y = 0; y < bitmap.height(); ++y) {
        if (!_opaque) {
            straightenRow(bitmap.row(y), _row.data(), static_cast<std::size_t>(bitmap.width()));
        }
        png_write_row(_png, _opaque ? bitmap.row(y) : _row.data());
    }
    png_write_end(_png, _info);
    return true;
}

void PngEncoder::writeHeader(const gfx::Bitmap& bitmap) {
    // The decoder's limits decide which pictures there are, not the library's own.
    png_set_user_limits(_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
    png_set_IHDR(_png, _info, static_cast<png_uint_32>(bitmap.width()),
                 static_cast<png_uint_32>(bitmap.height()), 8,
                 _opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_compression_level(_png, compressionLevel);
    png_set_filter(_png, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
    png_write_info(_png, _info);
    png_set_bgr(_png);
    if (_opaque) png_set_filler(_png, 0, PNG_FILLER_AFTER);
}

}  // namespace

std::optional<std::string> encodePng(const gfx::Bitmap& bitmap, Bytes& bytes) {
    bytes.clear();
    if (bitmap.isEmpty()) return "a picture without pixels cannot be written";
    PngEncoder encoder(bytes);
    if (encoder.encode(bitmap)) return std::nullopt;
    bytes.clear();
    return "the picture cannot be written as PNG (" + encoder.error() + ")";
}

}  // namespace kalim::codec
