#include "kalimkit/codec/JpegFrame.h"

#include <algorithm>
#include <array>
#include <numeric>

#include "kalimkit/codec/BlockPrefixes.h"
#include "kalimkit/codec/BytesAt.h"
#include "kalimkit/codec/ExifOrientation.h"

namespace kalim::codec {

namespace {

constexpr int blockSide = 8;
constexpr std::size_t blockPixels = 64;
// No decoder takes more, nor larger factors.
constexpr int mostColours = 10;
constexpr int mostSamples = 4;

constexpr std::uint8_t endOfImage = 0xD9;
constexpr std::uint8_t startOfScan = 0xDA;
constexpr std::uint8_t exifMarker = 0xE1;

// A marker's code and what follows its length.
struct Segment {
    std::uint8_t code = 0;
    ByteSpan data;
};

// Within a scan, 0xFF stands before a restart or a zero that is dropped; these have no length, and
// neither has the marker that some put in for nothing.
bool hasLength(std::uint8_t code) {
    return code > 1 && (code < 0xD0 || code > 0xD8);
}

// The next one, nothing behind the last; `rest` goes on behind it.
std::optional<Segment> nextSegment(ByteSpan& rest) {
    for (;;) {
        rest = rest.subspan(static_cast<std::size_t>(std::ranges::find(rest, 0xFF) - rest.begin()));
        if (rest.size() < 4 || rest[1] == endOfImage) return std::nullopt;
        // Any number of fill bytes may stand before the code.
        const std::uint8_t code = rest[1];
        const bool isFill = code == 0xFF;
        std::size_t length = isFill ? 1 : 2;
        if (!isFill && hasLength(code)) length += rest[2] * 256U + rest[3];
        const ByteSpan segment = rest.first(std::min(length, rest.size()));
        rest = rest.subspan(segment.size());
        if (!isFill && hasLength(code) && segment.size() >= 4) return {{code, segment.subspan(4)}};
    }
}

ByteSpan afterStart(ByteSpan file) {
    return file.subspan(std::min<std::size_t>(2, file.size()));
}

bool isFrame(std::uint8_t code) {
    return code >= 0xC0 && code <= 0xCF && code != 0xC4 && code != 0xC8 && code != 0xCC;
}

int twoBytes(ByteSpan data, std::size_t at) {
    return data[at] * 256 + data[at + 1];
}

std::optional<gfx::ImageOrientation> orientationIn(const Segment& segment) {
    const bool isExif = segment.code == exifMarker && hasAt(segment.data, 0, prefixes::exif);
    if (!isExif) return std::nullopt;
    return exifOrientation(segment.data.subspan(prefixes::exif.size()));
}

std::optional<JpegFrame> frameIn(const Segment& segment) {
    const ByteSpan data = segment.data;
    if (data.size() < 6 || data[5] == 0 || data[5] > mostColours) return std::nullopt;
    if (data.size() < 6U + 3U * data[5]) return std::nullopt;
    JpegFrame frame;
    frame.storedSize = {twoBytes(data, 3), twoBytes(data, 1)};
    frame.isProgressive = (segment.code & 3U) == 2;
    for (std::size_t at = 6; at < 6U + 3U * data[5]; at += 3) {
        const JpegFrame::Colour colour{data[at], data[at + 1] >> 4, data[at + 1] & 15};
        const auto isTaken = [](int samples) { return samples >= 1 && samples <= mostSamples; };
        if (!isTaken(colour.across) || !isTaken(colour.down)) return std::nullopt;
        frame.colours.push_back(colour);
    }
    return frame;
}

}  // namespace

ByteSpan nextJpegScan(ByteSpan& rest) {
    while (const auto segment = nextSegment(rest)) {
        if (segment->code == startOfScan && !segment->data.empty()) return segment->data;
    }
    return {};
}

std::optional<JpegFrame> JpegFrame::read(ByteSpan file) {
    std::optional<JpegFrame> frame;
    std::optional<gfx::ImageOrientation> orientation;
    ByteSpan rest = afterStart(file);
    for (auto segment = nextSegment(rest); segment && segment->code != startOfScan;
         segment = nextSegment(rest)) {
        if (isFrame(segment->code) && !frame) frame = frameIn(*segment);
        if (!orientation) orientation = orientationIn(*segment);
    }
    if (frame) frame->orientation = orientation.value_or(gfx::ImageOrientation::Up);
    return frame;
}

gfx::PixelSize JpegFrame::cell() const {
    const int across = std::ranges::max(colours, {}, &Colour::across).across;
    const int down = std::ranges::max(colours, {}, &Colour::down).down;
    gfx::PixelSize cell{blockSide, blockSide};
    for (const Colour& colour : colours) {
        cell = {std::lcm(cell.width, blockSide * across / colour.across),
                std::lcm(cell.height, blockSide * down / colour.down)};
    }
    return cell;
}

// Goes by the headers of the scans, each of which brings bits of some frequencies of its colours
// and says how many are still to come.
bool JpegFrame::lacksBits(ByteSpan file) const {
    if (!isProgressive) return false;
    std::vector<std::array<std::uint8_t, blockPixels>> missing(colours.size());
    for (auto& bits : missing)
        bits.fill(8);
    ByteSpan rest = afterStart(file);
    for (ByteSpan scan = nextJpegScan(rest); !scan.empty(); scan = nextJpegScan(rest)) {
        const std::size_t count = scan[0];
        if (scan.size() < 4 + 2 * count) break;
        const ByteSpan range = scan.subspan(1 + 2 * count);
        for (std::size_t i = 0; i < colours.size(); ++i) {
            for (std::size_t at = 0; at < count; ++at) {
                if (scan[1 + 2 * at] != colours[i].identifier) continue;
                for (std::size_t k = range[0]; k <= range[1] && k < blockPixels; ++k)
                    missing[i][k] = range[2] & 15U;
            }
        }
    }
    return std::ranges::any_of(missing, [](const auto& bits) {
        return std::ranges::any_of(bits, [](int count) { return count != 0; });
    });
}

}  // namespace kalim::codec
