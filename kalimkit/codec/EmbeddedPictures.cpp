#include "kalimkit/codec/EmbeddedPictures.h"

#include <algorithm>
#include <string_view>

namespace kalim::codec {

namespace {

using std::string_view_literals::operator""sv;

// How a JPEG begins, whose first byte some cameras change in what they hide in their notes.
bool isJpegStart(ByteSpan rest) {
    if (rest.size() < 4 || rest[1] != 0xD8 || rest[2] != 0xFF) return false;
    const std::uint8_t marker = rest[3];
    return (marker >= 0xC0 && marker <= 0xCF) || (marker >= 0xDA && marker <= 0xDD) ||
           marker >= 0xE0;
}

bool startsWith(ByteSpan bytes, std::string_view start) {
    return bytes.size() >= start.size() &&
           std::equal(start.begin(), start.end(), bytes.begin(),
                      [](char letter, std::uint8_t byte) {
                          return static_cast<std::uint8_t>(letter) == byte;
                      });
}

// JPEG, PNG, WebP, JPEG 2000, and HEIF with its relatives.
bool isPictureStart(ByteSpan rest) {
    const ByteSpan fromFourth = rest.subspan(std::min<std::size_t>(4, rest.size()));
    const ByteSpan fromEighth = rest.subspan(std::min<std::size_t>(8, rest.size()));
    return isJpegStart(rest) || startsWith(rest, "\x89PNG\r\n\x1A\n"sv) ||
           (startsWith(rest, "RIFF"sv) && startsWith(fromEighth, "WEBP"sv)) ||
           startsWith(rest, "\0\0\0\x0CjP  "sv) ||
           (startsWith(rest, "\0\0\0"sv) && startsWith(fromFourth, "ftyp"sv));
}

// The length of the JPEG at the start; pictures may lie in it.
std::size_t jpegLength(ByteSpan bytes) {
    std::size_t depth = 0;
    for (std::size_t at = 0; at + 1 < bytes.size(); ++at) {
        if (at == 0 || isJpegStart(bytes.subspan(at))) ++depth;
        if (bytes[at] != 0xFF || bytes[at + 1] != 0xD9) continue;
        if (--depth == 0) return at + 2;
    }
    return bytes.size();
}

}  // namespace

bool holdsPicture(ByteSpan bytes) {
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        if (isPictureStart(bytes.subspan(at))) return true;
    }
    return false;
}

void blankPictures(Bytes& note) {
    for (std::size_t at = 0; at < note.size(); ++at) {
        const ByteSpan rest = ByteSpan(note).subspan(at);
        if (!isPictureStart(rest)) continue;
        const std::size_t length = isJpegStart(rest) ? jpegLength(rest) : rest.size();
        std::fill_n(note.begin() + static_cast<std::ptrdiff_t>(at), length, std::uint8_t{0});
        at += length - 1;
    }
}

}  // namespace kalim::codec
