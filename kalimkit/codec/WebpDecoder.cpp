#include <webp/decode.h>
#include <webp/demux.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

#include "kalimkit/codec/AlphaRows.h"
#include "kalimkit/codec/BlockPrefixes.h"
#include "kalimkit/codec/ColorConversion.h"
#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/ExifOrientation.h"

namespace kalim::codec {

namespace {

constexpr const char* endsTooEarly = "the WebP data end too early";
// The number that the library has for pictures without loss.
constexpr int lossless = 2;
constexpr const char* isDamaged = "the WebP data are damaged";

// One picture of the container, which looks at the file's bytes and copies none of them.
class WebpDecoder {
public:
    explicit WebpDecoder(ByteSpan bytes);
    ~WebpDecoder();
    WebpDecoder(const WebpDecoder&) = delete;
    WebpDecoder& operator=(const WebpDecoder&) = delete;

    // The canvas; zero by zero when the file ends or breaks before it tells.
    std::uint32_t width() const { return canvas(WEBP_FF_CANVAS_WIDTH); }
    std::uint32_t height() const { return canvas(WEBP_FF_CANVAS_HEIGHT); }
    bool hasSize() const { return _state > WEBP_DEMUX_PARSING_HEADER; }

    // Bytes that reading the frame that was found takes, its pixels included.
    std::uint64_t neededMemory() const;

    // These answer with nothing or why the picture cannot be read.
    std::optional<std::string> findFrame();
    // The pixels are straight and in the file's own colours then.
    std::optional<std::string> readPixels(gfx::Bitmap& bitmap);
    void finishColors(gfx::Bitmap& bitmap);

    ByteSpan profile() { return chunk("ICCP"); }
    gfx::ImageOrientation orientation();
    bool isLossless() const { return _config.input.format == lossless; }

private:
    std::uint32_t canvas(WebPFormatFeature side) const {
        return _demuxer ? WebPDemuxGetI(_demuxer, side) : 0;
    }
    ByteSpan chunk(const char* name);
    bool frameFits() const;

    WebPDemuxState _state = WEBP_DEMUX_PARSE_ERROR;
    WebPDemuxer* _demuxer = nullptr;
    WebPIterator _frame{};
    WebPDecoderConfig _config{};
};

WebpDecoder::WebpDecoder(ByteSpan bytes) {
    const WebPData data{bytes.data(), bytes.size()};
    _demuxer = WebPDemuxPartial(&data, &_state);
}

WebpDecoder::~WebpDecoder() {
    WebPDemuxReleaseIterator(&_frame);
    WebPDemuxDelete(_demuxer);
}

// An animation stands for its first frame.
std::optional<std::string> WebpDecoder::findFrame() {
    if (_state == WEBP_DEMUX_PARSE_ERROR) return isDamaged;
    if (_state != WEBP_DEMUX_DONE) return endsTooEarly;
    if (!WebPDemuxGetFrame(_demuxer, 1, &_frame)) return isDamaged;
    if (!WebPInitDecoderConfig(&_config) ||
        WebPGetFeatures(_frame.fragment.bytes, _frame.fragment.size, &_config.input) !=
            VP8_STATUS_OK) {
        return isDamaged;
    }
    if (!frameFits()) return isDamaged;
    return std::nullopt;
}

// Three places tell the size: the canvas, the frame's place on it and the frame's own data.
bool WebpDecoder::frameFits() const {
    if (_config.input.width != _frame.width || _config.input.height != _frame.height) return false;
    const auto right = std::int64_t{_frame.x_offset} + _frame.width;
    const auto bottom = std::int64_t{_frame.y_offset} + _frame.height;
    const bool isAnimation = (WebPDemuxGetI(_demuxer, WEBP_FF_FORMAT_FLAGS) & ANIMATION_FLAG) != 0;
    if (isAnimation) return right <= width() && bottom <= height();
    return right == width() && bottom == height();
}

// The library keeps a lossless frame a second time, and of any other the alpha.
std::uint64_t WebpDecoder::neededMemory() const {
    const std::uint64_t framePixels =
        static_cast<std::uint64_t>(_frame.width) * static_cast<std::uint64_t>(_frame.height);
    const std::uint64_t perPixel = isLossless() ? 4 : _config.input.has_alpha;
    return std::uint64_t{4} * width() * height() + perPixel * framePixels;
}

std::optional<std::string> WebpDecoder::readPixels(gfx::Bitmap& bitmap) {
    // The first frame of an animation may leave some of the canvas to the ones that follow.
    if (bitmap.width() != _frame.width || bitmap.height() != _frame.height) {
        std::fill_n(bitmap.data(), bitmap.byteCount(), std::uint8_t{0});
    }
    // Colours are converted before they are premultiplied, so straight ones are asked for.
    _config.output.colorspace = MODE_BGRA;
    _config.output.is_external_memory = 1;
    WebPRGBABuffer& target = _config.output.u.RGBA;
    const std::size_t offset = std::size_t{4} * static_cast<std::size_t>(_frame.x_offset);
    target.rgba = bitmap.row(_frame.y_offset) + offset;
    target.stride = static_cast<int>(bitmap.stride());
    target.size =
        bitmap.byteCount() - bitmap.stride() * static_cast<std::size_t>(_frame.y_offset) - offset;
    switch (WebPDecode(_frame.fragment.bytes, _frame.fragment.size, &_config)) {
        case VP8_STATUS_OK:
            return std::nullopt;
        case VP8_STATUS_OUT_OF_MEMORY:
            return notEnoughMemory;
        case VP8_STATUS_SUSPENDED:
        case VP8_STATUS_NOT_ENOUGH_DATA:
            return endsTooEarly;
        default:
            return isDamaged;
    }
}

void WebpDecoder::finishColors(gfx::Bitmap& bitmap) {
    const auto conversion = ColorConversion::make(profile(), ColorConversion::Samples::Bgra);
    // A lossless picture tells of its alpha by a hint alone, which may be wrong.
    const bool hasAlpha = _config.input.has_alpha != 0 || isLossless();
    if (!conversion && !hasAlpha) return;
    const auto pixelCount = static_cast<std::size_t>(bitmap.width());
    for (int y = 0; y < bitmap.height(); ++y) {
        if (conversion) conversion->convertRow(bitmap.row(y), bitmap.row(y), pixelCount);
        if (hasAlpha) premultiplyRow(bitmap.row(y), pixelCount);
    }
}

ByteSpan WebpDecoder::chunk(const char* name) {
    WebPChunkIterator found{};
    ByteSpan data;
    if (WebPDemuxGetChunk(_demuxer, name, 1, &found)) data = {found.chunk.bytes, found.chunk.size};
    WebPDemuxReleaseChunkIterator(&found);
    return data;
}

// Some programs keep the prefix that the block has in a JPEG file.
gfx::ImageOrientation WebpDecoder::orientation() {
    constexpr std::string_view prefix = prefixes::exif;
    const ByteSpan exif = chunk("EXIF");
    const bool hasPrefix =
        exif.size() >= prefix.size() && std::memcmp(exif.data(), prefix.data(), prefix.size()) == 0;
    return exifOrientation(hasPrefix ? exif.subspan(prefix.size()) : exif);
}

}  // namespace

DecodeResult decodeWebp(ByteSpan bytes, const DecodeLimits& limits, Coloring coloring) {
    DecodeResult result;
    WebpDecoder decoder(bytes);
    if (decoder.hasSize()) result.error = sizeProblem(decoder.width(), decoder.height(), limits);
    if (!result.error) result.error = decoder.findFrame();
    if (result.error) return result;
    result.error = memoryProblem(decoder.neededMemory(), limits);
    if (result.error || !allocatePixels(result, decoder.width(), decoder.height(), limits)) {
        return result;
    }
    result.orientation = decoder.orientation();
    result.error = decoder.readPixels(result.bitmap);
    if (!result.error && coloring == Coloring::Srgb) decoder.finishColors(result.bitmap);
    return result;
}

FileColors webpColors(ByteSpan bytes) {
    WebpDecoder decoder(bytes);
    if (decoder.findFrame()) return {};
    const ByteSpan profile = decoder.profile();
    return {{profile.begin(), profile.end()}, ColorConversion::Samples::Bgra, decoder.isLossless()};
}

}  // namespace kalim::codec
