#include <algorithm>
#include <array>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "kalimkit/codec/ColorConversion.h"
#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/ExifOrientation.h"

// jpeglib.h relies on <cstdio> before it.
#include <jerror.h>
#include <jpeglib.h>

namespace kalim::codec {

namespace {

using std::string_view_literals::operator""sv;

constexpr int exifMarker = JPEG_APP0 + 1;
constexpr int profileMarker = JPEG_APP0 + 2;
constexpr std::string_view exifPrefix = "Exif\0\0"sv;

constexpr const char* endsTooEarly = "the JPEG data end too early";

// libjpeg leaves an error by longjmp, which skips destructors: everything that lives on the stack
// between a setjmp and the library is trivial, the rest are members.
class JpegDecoder {
public:
    explicit JpegDecoder(ByteSpan bytes);
    ~JpegDecoder();
    JpegDecoder(const JpegDecoder&) = delete;
    JpegDecoder& operator=(const JpegDecoder&) = delete;

    bool readHeader();
    void prepareColors();
    bool readPixels(gfx::Bitmap& bitmap);

    const jpeg_decompress_struct& info() const { return _info; }
    // Says why the last step failed.
    std::string error() const { return _message.data(); }
    gfx::ImageOrientation orientation() const;
    bool holdsEnoughData() const;
    // Why there are too many scans, or nothing.
    std::optional<std::string> scanProblem(const DecodeLimits& limits) const;

private:
    static JpegDecoder& of(j_common_ptr info) {
        return *static_cast<JpegDecoder*>(info->client_data);
    }
    static void onError(j_common_ptr info);
    static void onMessage(j_common_ptr info, int level);
    static boolean onBytesWanted(j_decompress_ptr info);
    [[noreturn]] void fail(const char* message);
    bool chooseColors();
    int countScans() const;
    bool hasAllScans() const;
    void finishRow(std::uint8_t* bgra) const;
    void convertCmykRow(std::uint8_t* bgra) const;

    ByteSpan _bytes;
    jpeg_decompress_struct _info{};
    jpeg_error_mgr _errors{};
    jpeg_source_mgr _source{};
    std::jmp_buf _failed{};
    std::array<char, JMSG_LENGTH_MAX + 64> _message{};
    bool _readsPixels = false;
    // The file's bytes are used up.
    bool _hasEnded = false;
    Bytes _cmykRow;
    // Made by the library with malloc.
    JOCTET* _profile = nullptr;
    unsigned _profileSize = 0;
    std::unique_ptr<ColorConversion> _conversion;
};

JpegDecoder::JpegDecoder(ByteSpan bytes) : _bytes(bytes) {
    _info.err = jpeg_std_error(&_errors);
    _errors.error_exit = onError;
    _errors.emit_message = onMessage;
    _errors.output_message = [](j_common_ptr) {};
    _info.client_data = this;
    // Fails only for a library of another version, before there is anything to read.
    if (setjmp(_failed) == 0) jpeg_create_decompress(&_info);
}

JpegDecoder::~JpegDecoder() {
    jpeg_destroy_decompress(&_info);
    std::free(_profile);
}

// Whatever the library finds wrong after the last byte comes from the missing ones.
void JpegDecoder::fail(const char* message) {
    std::snprintf(_message.data(), _message.size(), "%s", _hasEnded ? endsTooEarly : message);
    std::longjmp(_failed, 1);
}

void JpegDecoder::onError(j_common_ptr info) {
    std::array<char, JMSG_LENGTH_MAX> reason{};
    info->err->format_message(info, reason.data());
    std::array<char, JMSG_LENGTH_MAX + 64> message{};
    std::snprintf(message.data(), message.size(), "the JPEG data cannot be read (%s)",
                  reason.data());
    of(info).fail(message.data());
}

// After most warnings the library goes on and fills what is missing with grey; these few concern
// side information or padding.
void JpegDecoder::onMessage(j_common_ptr info, int level) {
    if (level >= 0) return;
    switch (info->err->msg_code) {
        case JWRN_ADOBE_XFORM:
        case JWRN_BOGUS_ICC:
        case JWRN_EXTRANEOUS_DATA:
        case JWRN_JFIF_MAJOR:
            return;
        default:
            of(info).fail("the JPEG data are damaged");
    }
}

// Some programs leave out the end marker. The decoder asks for it even when it has all pixels, so
// it is given one, once: if there are pixels missing it complains. Arithmetic coding would not, it
// goes on with zeros.
boolean JpegDecoder::onBytesWanted(j_decompress_ptr info) {
    static constexpr std::array<JOCTET, 2> endMarker{0xFF, JPEG_EOI};
    JpegDecoder& decoder = of(reinterpret_cast<j_common_ptr>(info));
    if (!decoder._readsPixels || decoder._hasEnded || info->arith_code) decoder.fail(endsTooEarly);
    decoder._hasEnded = true;
    info->src->next_input_byte = endMarker.data();
    info->src->bytes_in_buffer = endMarker.size();
    return TRUE;
}

bool JpegDecoder::readHeader() {
    if (_info.mem == nullptr || setjmp(_failed) != 0) return false;
    _source.next_input_byte = _bytes.data();
    _source.bytes_in_buffer = _bytes.size();
    _source.init_source = [](j_decompress_ptr) {};
    _source.fill_input_buffer = onBytesWanted;
    _source.skip_input_data = [](j_decompress_ptr info, long count) {
        if (count <= 0) return;
        if (static_cast<std::size_t>(count) > info->src->bytes_in_buffer) {
            of(reinterpret_cast<j_common_ptr>(info)).fail(endsTooEarly);
        }
        info->src->next_input_byte += count;
        info->src->bytes_in_buffer -= static_cast<std::size_t>(count);
    };
    _source.resync_to_restart = jpeg_resync_to_restart;
    _source.term_source = [](j_decompress_ptr) {};
    _info.src = &_source;
    jpeg_save_markers(&_info, exifMarker, 0xFFFF);
    jpeg_save_markers(&_info, profileMarker, 0xFFFF);
    jpeg_read_header(&_info, TRUE);
    jpeg_read_icc_profile(&_info, &_profile, &_profileSize);
    return chooseColors();
}

// A small file can ask for a large picture to be gone over thousands of times; cameras and programs
// that save for the web make a dozen scans, and the most thorough two.
std::optional<std::string> JpegDecoder::scanProblem(const DecodeLimits& limits) const {
    constexpr int maxScans = 100;
    constexpr int maxScansAtMostPixels = 24;
    const int scans = countScans();
    if (scans > maxScans) return "the JPEG data have more than 100 scans";
    const std::int64_t pixels = std::int64_t{_info.image_width} * _info.image_height;
    if (scans * pixels / maxScansAtMostPixels <= limits.maxPixels) return std::nullopt;
    return "the JPEG data have " + std::to_string(scans) + " scans, too many for so many pixels";
}

// Up to the end marker, behind which some cameras keep further pictures. Within a scan, 0xFF stands
// before a marker, a restart or a zero that is dropped.
int JpegDecoder::countScans() const {
    constexpr std::uint8_t startOfScan = 0xDA;
    const auto isInsideScan = [](std::uint8_t code) {
        return code == 0 || (code >= JPEG_RST0 && code < JPEG_RST0 + 8);
    };
    // The first scan's header is read already.
    int scans = 1;
    for (ByteSpan rest(_source.next_input_byte, _source.bytes_in_buffer);;) {
        rest = rest.subspan(static_cast<std::size_t>(std::ranges::find(rest, 0xFF) - rest.begin()));
        if (rest.size() < 4 || rest[1] == JPEG_EOI) return scans;
        std::size_t length = rest[1] == 0xFF ? 1 : 2;
        if (length == 2 && !isInsideScan(rest[1])) length += rest[2] * 256U + rest[3];
        if (rest[1] == startOfScan) ++scans;
        rest = rest.subspan(std::min(length, rest.size()));
    }
}

// A few bytes may not ask for gigabytes of pixels: a Huffman code is at least a bit long, and every
// block of 64 pixels has one. Arithmetic coding knows no such bound; a blank picture of it may be
// small, but not as large as the limits allow.
bool JpegDecoder::holdsEnoughData() const {
    constexpr std::uint64_t pixelsPerByte = std::uint64_t{64} * 8;
    constexpr std::uint64_t blankPixels = std::uint64_t{1} << 24U;
    const std::uint64_t pixels = std::uint64_t{_info.image_width} * _info.image_height;
    if (_info.arith_code && pixels <= blankPixels) return true;
    return pixels / pixelsPerByte <= _bytes.size();
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
void JpegDecoder::prepareColors() {
    auto samples = ColorConversion::Samples::Bgra;
    if (!_cmykRow.empty()) {
        samples = _info.saw_Adobe_marker ? ColorConversion::Samples::MissingInk
                                         : ColorConversion::Samples::Ink;
    } else if (_info.jpeg_color_space == JCS_GRAYSCALE) {
        samples = ColorConversion::Samples::GreyBgra;
    }
    _conversion = ColorConversion::make(ByteSpan(_profile, _profileSize), samples);
}

bool JpegDecoder::readPixels(gfx::Bitmap& bitmap) {
    if (setjmp(_failed) != 0) return false;
    _readsPixels = true;
    jpeg_start_decompress(&_info);
    if (_hasEnded && !hasAllScans()) fail(endsTooEarly);
    while (_info.output_scanline < _info.output_height) {
        std::uint8_t* const bgra = bitmap.row(static_cast<int>(_info.output_scanline));
        JSAMPROW row = _cmykRow.empty() ? bgra : _cmykRow.data();
        jpeg_read_scanlines(&_info, &row, 1);
        finishRow(bgra);
    }
    jpeg_finish_decompress(&_info);
    return true;
}

// Tells whether every colour is there, and in a progressive picture every bit of it.
bool JpegDecoder::hasAllScans() const {
    for (int i = 0; i < _info.num_components; ++i) {
        // Set by the first scan of a component.
        if (_info.comp_info[i].quant_table == nullptr) return false;
        if (!_info.progressive_mode) continue;
        const auto& missingBits = _info.coef_bits[i];
        if (std::ranges::any_of(missingBits, [](int bits) { return bits != 0; })) return false;
    }
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

gfx::ImageOrientation JpegDecoder::orientation() const {
    for (const jpeg_marker_struct* marker = _info.marker_list; marker; marker = marker->next) {
        const ByteSpan data(marker->data, marker->data_length);
        if (data.size() >= exifPrefix.size() &&
            std::memcmp(data.data(), exifPrefix.data(), exifPrefix.size()) == 0) {
            return exifOrientation(data.subspan(exifPrefix.size()));
        }
    }
    return gfx::ImageOrientation::Up;
}

}  // namespace

DecodeResult decodeJpeg(ByteSpan bytes, const DecodeLimits& limits) {
    DecodeResult result;
    JpegDecoder decoder(bytes);
    if (!decoder.readHeader()) {
        result.error = decoder.error();
        return result;
    }
    const auto width = decoder.info().image_width;
    const auto height = decoder.info().image_height;
    result.error = sizeProblem(width, height, limits);
    if (!result.error && !decoder.holdsEnoughData()) result.error = endsTooEarly;
    if (!result.error) result.error = decoder.scanProblem(limits);
    if (result.error || !allocatePixels(result, width, height, limits)) return result;
    // The library drops the markers with the last pixel.
    result.orientation = decoder.orientation();
    decoder.prepareColors();
    if (!decoder.readPixels(result.bitmap)) result.error = decoder.error();
    return result;
}

}  // namespace kalim::codec
