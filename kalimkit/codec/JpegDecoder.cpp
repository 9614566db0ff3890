#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "kalimkit/codec/ColorConversion.h"
#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/JpegReader.h"

namespace kalim::codec {

namespace {

class JpegDecoder : public JpegReader {
public:
    explicit JpegDecoder(ByteSpan bytes) : JpegReader(bytes) {}
    ~JpegDecoder() { std::free(_profile); }
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    bool readProfile();
    bool chooseColors();
    void prepareColors();
    bool readPixels(gfx::Bitmap& bitmap);

    ByteSpan profile() const { return {_profile, _profileSize}; }
    ColorConversion::Samples samples() const;
    bool hasInk() const { return !_cmykRow.empty(); }

private:
    void finishRow(std::uint8_t* bgra) const;
    void convertCmykRow(std::uint8_t* bgra) const;

    Bytes _cmykRow;
    // Made by the library with malloc.
    JOCTET* _profile = nullptr;
    unsigned _profileSize = 0;
    std::unique_ptr<ColorConversion> _conversion;
};

bool JpegDecoder::readProfile() {
    if (setjmp(_failed) != 0) return false;
    jpeg_read_icc_profile(&_info, &_profile, &_profileSize);
    return true;
}

bool JpegDecoder::chooseColors() {
    switch (_info.jpeg_color_space) {
        case JCS_GRAYSCALE:
        case JCS_RGB:
        case JCS_YCbCr:
            _info.out_color_space = JCS_EXT_BGRA;
            return true;
        case JCS_CMYK:
        case JCS_YCCK:
            _info.out_color_space = JCS_CMYK;
            _cmykRow.resize(std::size_t{4} * _info.image_width);
            return true;
        default:
            std::snprintf(_message.data(), _message.size(),
                          "JPEG pictures of %d colour components are not supported",
                          _info.num_components);
            return false;
    }
}

// Adobe's programs store how much of each ink is missing; a file without their marker stores ink.
ColorConversion::Samples JpegDecoder::samples() const {
    using enum ColorConversion::Samples;
    if (hasInk()) return _info.saw_Adobe_marker ? MissingInk : Ink;
    return _info.jpeg_color_space == JCS_GRAYSCALE ? GreyBgra : Bgra;
}

void JpegDecoder::prepareColors() {
    _conversion = ColorConversion::make(profile(), samples());
}

bool JpegDecoder::readPixels(gfx::Bitmap& bitmap) {
    if (setjmp(_failed) != 0) return false;
    _readsPixels = true;
    jpeg_start_decompress(&_info);
    expectAllScans();
    while (_info.output_scanline < _info.output_height) {
        std::uint8_t* const bgra = bitmap.row(static_cast<int>(_info.output_scanline));
        JSAMPROW row = _cmykRow.empty() ? bgra : _cmykRow.data();
        jpeg_read_scanlines(&_info, &row, 1);
        finishRow(bgra);
    }
    jpeg_finish_decompress(&_info);
    return true;
}

void JpegDecoder::finishRow(std::uint8_t* bgra) const {
    // Sets alpha too, which the conversion leaves as it is.
    if (!_cmykRow.empty()) convertCmykRow(bgra);
    if (!_conversion) return;
    _conversion->convertRow(_cmykRow.empty() ? bgra : _cmykRow.data(), bgra, _info.image_width);
}

// Each ink darkens what the black lets through: what there is to do without a profile.
void JpegDecoder::convertCmykRow(std::uint8_t* bgra) const {
    const unsigned flip = _info.saw_Adobe_marker ? 0 : 255;
    for (std::size_t x = 0; x < _info.image_width; ++x) {
        const std::uint8_t* const cmyk = _cmykRow.data() + 4 * x;
        const unsigned paper = cmyk[3] ^ flip;
        for (std::size_t i = 0; i < 3; ++i) {
            bgra[4 * x + i] = static_cast<std::uint8_t>(((cmyk[2 - i] ^ flip) * paper + 127) / 255);
        }
        bgra[4 * x + 3] = 255;
    }
}

}  // namespace

DecodeResult decodeJpeg(ByteSpan bytes, const DecodeLimits& limits, Coloring coloring) {
    DecodeResult result;
    JpegDecoder decoder(bytes);
    if (!decoder.readHeader() || !decoder.readProfile() || !decoder.chooseColors()) {
        result.error = decoder.error();
        return result;
    }
    result.error = decoder.headerProblem(limits);
    const jpeg_decompress_struct& info = decoder.info();
    if (result.error || !allocatePixels(result, info.image_width, info.image_height, limits)) {
        return result;
    }
    // The library drops the markers with the last pixel.
    result.orientation = decoder.orientation();
    if (coloring == Coloring::Srgb || decoder.hasInk()) decoder.prepareColors();
    if (!decoder.readPixels(result.bitmap)) result.error = decoder.error();
    return result;
}

FileColors jpegColors(ByteSpan bytes) {
    JpegDecoder decoder(bytes);
    const bool isRead = decoder.readHeader() && decoder.readProfile() && decoder.chooseColors();
    if (!isRead) return {};
    const ByteSpan profile = decoder.profile();
    return {{profile.begin(), profile.end()}, decoder.samples(), false};
}

}  // namespace kalim::codec
