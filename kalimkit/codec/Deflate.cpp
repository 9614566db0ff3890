#include "kalimkit/codec/Deflate.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <memory>

namespace kalim::codec {

namespace {

// The library counts in 32 bits.
constexpr std::size_t largestPiece = std::numeric_limits<uInt>::max();

void feed(z_stream& stream, ByteSpan& rest) {
    if (stream.avail_in > 0) return;
    const ByteSpan piece = rest.first(std::min(rest.size(), largestPiece));
    // The library leaves the bytes alone, whatever its interface says.
    stream.next_in = const_cast<Bytef*>(piece.data());
    stream.avail_in = static_cast<uInt>(piece.size());
    rest = rest.subspan(piece.size());
}

}  // namespace

Bytes deflated(ByteSpan bytes) {
    z_stream stream{};
    Bytes packed;
    if (deflateInit(&stream, Z_DEFAULT_COMPRESSION) != Z_OK) return packed;
    const std::unique_ptr<z_stream, decltype(&deflateEnd)> owner(&stream, deflateEnd);
    std::array<std::uint8_t, 1 << 16> block{};
    for (int status = Z_OK; status == Z_OK;) {
        feed(stream, bytes);
        stream.next_out = block.data();
        stream.avail_out = block.size();
        status = deflate(&stream, bytes.empty() ? Z_FINISH : Z_NO_FLUSH);
        packed.insert(packed.end(), block.data(), stream.next_out);
    }
    return packed;
}

std::optional<Bytes> inflated(ByteSpan packed, std::size_t maxBytes) {
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) return std::nullopt;
    const std::unique_ptr<z_stream, decltype(&inflateEnd)> owner(&stream, inflateEnd);
    Bytes bytes;
    std::array<std::uint8_t, 1 << 16> block{};
    for (;;) {
        feed(stream, packed);
        stream.next_out = block.data();
        stream.avail_out = block.size();
        const int status = inflate(&stream, Z_NO_FLUSH);
        if (status != Z_OK && status != Z_STREAM_END) return std::nullopt;
        const auto count = static_cast<std::size_t>(stream.next_out - block.data());
        if (count > maxBytes - bytes.size()) return std::nullopt;
        bytes.insert(bytes.end(), block.data(), stream.next_out);
        if (status == Z_STREAM_END) return bytes;
    }
}

}  // namespace kalim::codec
