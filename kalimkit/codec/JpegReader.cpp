#include "kalimkit/codec/JpegReader.h"

#include <algorithm>
#include <string_view>

#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/PixelMap.h"

#include <jerror.h>

namespace kalim::codec {

namespace {

constexpr int profileMarker = JPEG_APP0 + 2;

constexpr const char* endsTooEarly = "the JPEG data end too early";

}  // namespace

JpegReader::JpegReader(ByteSpan bytes) : _bytes(bytes), _frame(JpegFrame::read(bytes)) {
    _info.err = jpeg_std_error(&_errors);
    _errors.error_exit = onError;
    _errors.emit_message = onMessage;
    _errors.output_message = [](j_common_ptr) {};
    _info.client_data = this;
    // Fails only for a library of another version, before there is anything to read.
    if (setjmp(_failed) == 0) jpeg_create_decompress(&_info);
}

JpegReader::~JpegReader() {
    jpeg_destroy_decompress(&_info);
}

// Whatever the library finds wrong after the last byte comes from the missing ones.
void JpegReader::fail(const char* message) {
    std::snprintf(_message.data(), _message.size(), "%s", _hasEnded ? endsTooEarly : message);
    std::longjmp(_failed, 1);
}

void JpegReader::onError(j_common_ptr info) {
    if (info->err->msg_code == JERR_OUT_OF_MEMORY) of(info).fail(notEnoughMemory);
    std::array<char, JMSG_LENGTH_MAX> reason{};
    info->err->format_message(info, reason.data());
    std::array<char, JMSG_LENGTH_MAX + 64> message{};
    std::snprintf(message.data(), message.size(), "the JPEG data cannot be read (%s)",
                  reason.data());
    of(info).fail(message.data());
}

// After most warnings the library goes on and fills what is missing with grey; these few concern
// side information or padding.
void JpegReader::onMessage(j_common_ptr info, int level) {
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
boolean JpegReader::onBytesWanted(j_decompress_ptr info) {
    static constexpr std::array<JOCTET, 2> endMarker{0xFF, JPEG_EOI};
    JpegReader& reader = of(reinterpret_cast<j_common_ptr>(info));
    if (!reader._readsPixels || reader._hasEnded || info->arith_code) reader.fail(endsTooEarly);
    reader._hasEnded = true;
    info->src->next_input_byte = endMarker.data();
    info->src->bytes_in_buffer = endMarker.size();
    return TRUE;
}

bool JpegReader::readHeader() {
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
    jpeg_save_markers(&_info, profileMarker, 0xFFFF);
    jpeg_read_header(&_info, TRUE);
    if (!_frame) fail("the JPEG data cannot be read");
    return true;
}

std::optional<std::string> JpegReader::headerProblem(const DecodeLimits& limits) const {
    std::optional<std::string> problem = sizeProblem(_info.image_width, _info.image_height, limits);
    if (!problem && !holdsEnoughData()) problem = endsTooEarly;
    if (!problem) problem = scanProblem(limits);
    return problem ? problem : memoryProblem(neededMemory(), limits);
}

// What comes in several scans is put together before it becomes pixels.
std::uint64_t JpegReader::neededMemory() const {
    constexpr std::uint64_t blockBytes = DCTSIZE2 * sizeof(JCOEF);
    const std::uint64_t pixels = std::uint64_t{4} * _info.image_width * _info.image_height;
    if (!jpeg_has_multiple_scans(const_cast<j_decompress_ptr>(&_info))) return pixels;
    std::uint64_t blocks = 0;
    for (int i = 0; i < _info.num_components; ++i) {
        const jpeg_component_info& part = _info.comp_info[i];
        blocks += std::uint64_t{part.width_in_blocks} * part.height_in_blocks;
    }
    return pixels + blockBytes * blocks;
}

// A small file can ask for a large picture to be gone over thousands of times; cameras and programs
// that save for the web make a dozen scans, and the most thorough two.
std::optional<std::string> JpegReader::scanProblem(const DecodeLimits& limits) const {
    constexpr int maxScans = 100;
    constexpr int maxScansAtMostPixels = 24;
    // The first scan's header is read already.
    int scans = 1;
    ByteSpan rest(_source.next_input_byte, _source.bytes_in_buffer);
    while (!nextJpegScan(rest).empty())
        ++scans;
    if (scans > maxScans) return "the JPEG data have more than 100 scans";
    const std::int64_t pixels = std::int64_t{_info.image_width} * _info.image_height;
    if (scans * pixels / maxScansAtMostPixels <= limits.maxPixels) return std::nullopt;
    return "the JPEG data have " + std::to_string(scans) + " scans, too many for so many pixels";
}

// A few bytes may not ask for gigabytes of pixels: a Huffman code is at least a bit long, and every
// block of 64 pixels has one. Arithmetic coding knows no such bound; a blank picture of it may be
// small, but not as large as the limits allow.
bool JpegReader::holdsEnoughData() const {
    constexpr std::uint64_t pixelsPerByte = std::uint64_t{64} * 8;
    constexpr std::uint64_t blankPixels = std::uint64_t{1} << 24U;
    const std::uint64_t pixels = std::uint64_t{_info.image_width} * _info.image_height;
    if (_info.arith_code && pixels <= blankPixels) return true;
    return pixels / pixelsPerByte <= _bytes.size();
}

void JpegReader::expectAllScans() {
    if (_hasEnded && !hasAllScans()) fail(endsTooEarly);
}

// Tells whether every colour is there, and in a progressive picture every bit of it.
bool JpegReader::hasAllScans() const {
    for (int i = 0; i < _info.num_components; ++i) {
        // Set by the first scan of a component.
        if (_info.comp_info[i].quant_table == nullptr) return false;
        if (!_info.progressive_mode) continue;
        const auto& missingBits = _info.coef_bits[i];
        if (std::ranges::any_of(missingBits, [](int bits) { return bits != 0; })) return false;
    }
    return true;
}

gfx::PixelSize JpegReader::storedSize() const {
    return {static_cast<int>(_info.image_width), static_cast<int>(_info.image_height)};
}

gfx::PixelSize JpegReader::seenSize() const {
    return withExchangedSides(storedSize(), gfx::exchangesSides(orientation()));
}

}  // namespace kalim::codec
