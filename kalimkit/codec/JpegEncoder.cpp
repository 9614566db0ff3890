#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>

#include "kalimkit/codec/AlphaRows.h"
#include "kalimkit/codec/ColorProfiles.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/EncodeSteps.h"

// jpeglib.h relies on <cstdio> before it.
#include <jpeglib.h>

namespace kalim::codec {

namespace {

// libjpeg leaves an error by longjmp, which skips destructors: everything that lives on the stack
// between a setjmp and the library is trivial, the rest are members.
class JpegEncoder {
public:
    JpegEncoder();
    ~JpegEncoder();
    JpegEncoder(const JpegEncoder&) = delete;
    JpegEncoder& operator=(const JpegEncoder&) = delete;

    bool encode(const PictureRows& rows, int quality);

    ByteSpan bytes() const { return {_bytes, _byteCount}; }
    std::string error() const { return _message.data(); }

private:
    static void onError(j_common_ptr info);
    void layOverWhite();
    void packGreys();

    jpeg_compress_struct _info{};
    jpeg_error_mgr _errors{};
    std::jmp_buf _failed{};
    std::array<char, JMSG_LENGTH_MAX> _message{};
    Bytes _row;
    // Made and enlarged by the library with malloc.
    unsigned char* _bytes = nullptr;
    unsigned long _byteCount = 0;
};

JpegEncoder::JpegEncoder() {
    _info.err = jpeg_std_error(&_errors);
    _errors.error_exit = onError;
    _errors.output_message = [](j_common_ptr) {};
    _info.client_data = this;
    // Fails only for a library of another version, before there is anything to write.
    if (setjmp(_failed) == 0) jpeg_create_compress(&_info);
}

JpegEncoder::~JpegEncoder() {
    jpeg_destroy_compress(&_info);
    std::free(_bytes);
}

void JpegEncoder::onError(j_common_ptr info) {
    JpegEncoder& encoder = *static_cast<JpegEncoder*>(info->client_data);
    info->err->format_message(info, encoder._message.data());
    std::longjmp(encoder._failed, 1);
}

bool JpegEncoder::encode(const PictureRows& rows, int quality) {
    _row.resize(std::size_t{4} * static_cast<std::size_t>(rows.size().width));
    if (_info.mem == nullptr || setjmp(_failed) != 0) return false;
    jpeg_mem_dest(&_info, &_bytes, &_byteCount);
    _info.image_width = static_cast<JDIMENSION>(rows.size().width);
    _info.image_height = static_cast<JDIMENSION>(rows.size().height);
    _info.input_components = rows.isGrey() ? 1 : 4;
    _info.in_color_space = rows.isGrey() ? JCS_GRAYSCALE : JCS_EXT_BGRX;
    jpeg_set_defaults(&_info);
    jpeg_set_quality(&_info, std::clamp(quality, 1, 100), TRUE);
    _info.comp_info[0].h_samp_factor = 1;
    _info.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&_info, TRUE);
    while (_info.next_scanline < _info.image_height) {
        rows.read(static_cast<int>(_info.next_scanline), _row.data());
        if (!rows.isOpaque()) layOverWhite();
        if (rows.isGrey()) packGreys();
        JSAMPROW row = _row.data();
        jpeg_write_scanlines(&_info, &row, 1);
    }
    jpeg_finish_compress(&_info);
    return true;
}

void JpegEncoder::layOverWhite() {
    premultiplyRow(_row.data(), _row.size() / 4);
    for (std::size_t i = 0; i < _row.size(); i += 4) {
        const int white = 255 - _row[i + 3];
        for (std::size_t part = i; part < i + 3; ++part)
            _row[part] = static_cast<std::uint8_t>(_row[part] + white);
    }
}

void JpegEncoder::packGreys() {
    for (std::size_t i = 0; i < _row.size(); i += 4)
        _row[i / 4] = _row[i];
}

}  // namespace

std::optional<std::string> encodeJpeg(const PictureRows& rows, ByteSpan profile, int quality,
                                      Bytes& bytes) {
    bytes.clear();
    if (rows.size().isEmpty()) return "a picture without pixels cannot be written";
    JpegEncoder encoder;
    if (!encoder.encode(rows, quality)) {
        return "the picture cannot be written as JPEG (" + encoder.error() + ")";
    }
    bytes.assign(encoder.bytes().begin(), encoder.bytes().end());
    addProfile(bytes, profile.empty() ? ByteSpan(srgbProfile(rows.isGrey())) : profile);
    return std::nullopt;
}

std::optional<std::string> encodeJpeg(const gfx::Bitmap& bitmap, int quality, Bytes& bytes) {
    return encodeJpeg(BitmapRows(bitmap), {}, quality, bytes);
}

}  // namespace kalim::codec
