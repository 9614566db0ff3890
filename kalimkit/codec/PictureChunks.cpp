#include "kalimkit/codec/PictureChunks.h"

#include <algorithm>

namespace kalim::codec {

namespace {

constexpr std::uint8_t startOfScan = 0xDA;

// Markers that stand alone: the start, the end, a restart and one for arithmetic coding.
bool hasSegment(std::uint8_t marker) {
    return marker != 0x01 && (marker < 0xD0 || marker > 0xD9);
}

}  // namespace

std::uint32_t bigEndian(ByteSpan bytes) {
    std::uint32_t number = 0;
    for (const std::uint8_t byte : bytes)
        number = number << 8U | byte;
    return number;
}

std::uint32_t littleEndian(ByteSpan bytes) {
    std::uint32_t number = 0;
    for (std::size_t i = bytes.size(); i > 0; --i)
        number = number << 8U | bytes[i - 1];
    return number;
}

PictureChunks::PictureChunks(ByteSpan file) : _format(fileFormat(file)), _rest(file) {
    const std::size_t start = _format == FileFormat::Webp ? 12 : _format == FileFormat::Png ? 8 : 2;
    _rest = _rest.subspan(std::min(start, _rest.size()));
}

std::optional<PictureChunk> PictureChunks::next() {
    switch (_format) {
        case FileFormat::Jpeg:
            return nextOfJpeg();
        case FileFormat::Png:
            return nextOfPng();
        case FileFormat::Webp:
            return nextOfWebp();
        case FileFormat::Other:
            break;
    }
    return std::nullopt;
}

// Whatever stands before a marker is passed over, as the decoder does.
std::optional<PictureChunk> PictureChunks::nextOfJpeg() {
    for (;;) {
        _rest =
            _rest.subspan(static_cast<std::size_t>(std::ranges::find(_rest, 0xFF) - _rest.begin()));
        if (_rest.size() < 2) return std::nullopt;
        if (_rest[1] != 0 && _rest[1] != 0xFF) break;
        _rest = _rest.subspan(1);
    }
    const std::uint8_t marker = _rest[1];
    if (!hasSegment(marker)) return take(marker, 2, 0, 0);
    if (marker == startOfScan) return take(marker, 2, _rest.size() - 2, 0);
    const std::size_t length = _rest.size() < 4 ? 2 : bigEndian(_rest.subspan(2, 2));
    return take(marker, 4, std::max<std::size_t>(length, 2) - 2, 0);
}

std::optional<PictureChunk> PictureChunks::nextOfPng() {
    if (_rest.size() < 8) return std::nullopt;
    return take(bigEndian(_rest.subspan(4, 4)), 8, bigEndian(_rest.first(4)), 4);
}

std::optional<PictureChunk> PictureChunks::nextOfWebp() {
    if (_rest.size() < 8) return std::nullopt;
    const std::size_t length = littleEndian(_rest.subspan(4, 4));
    return take(bigEndian(_rest.first(4)), 8, length, length % 2);
}

PictureChunk PictureChunks::take(std::uint32_t type, std::size_t before, std::size_t length,
                                 std::size_t behind) {
    // Where a size has 32 bits, that of a whole chunk may have no room in it.
    const std::size_t size = before + std::min(length, _rest.size()) + behind;
    PictureChunk chunk{type, {}, _rest.first(std::min(size, _rest.size())), size > _rest.size()};
    chunk.data = _rest.subspan(std::min(before, _rest.size()));
    chunk.data = chunk.data.first(std::min(length, chunk.data.size()));
    _rest = _rest.subspan(chunk.whole.size());
    return chunk;
}

}  // namespace kalim::codec
