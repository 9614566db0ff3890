#include <algorithm>

#include "kalimkit/codec/PersonalTraces.h"
#include "kalimkit/codec/PictureChunks.h"

namespace kalim::codec {

namespace {

constexpr std::uint32_t resourceStart = chunkType("8BIM");

// Numbers of datasets of the second record, which describes the picture.
PersonalTraces meaningOf(std::uint8_t dataset) {
    switch (dataset) {
        // Content location: code and name. City, sublocation, province, country: code and name.
        case 26:
        case 27:
        case 90:
        case 92:
        case 95:
        case 100:
        case 101:
            return {.place = true};
        // By-line and its title, copyright notice, contact, writer.
        case 80:
        case 85:
        case 116:
        case 118:
        case 122:
            return {.owner = true};
        default:
            return {};
    }
}

// Each dataset: a mark, record, number, length, value. Lengths from 32768 on are written otherwise
// and belong to none of these.
PersonalTraces tracesInDatasets(ByteSpan rest) {
    PersonalTraces traces;
    while (rest.size() >= 5 && rest[0] == 0x1C) {
        const std::size_t length = bigEndian(rest.subspan(3, 2));
        const ByteSpan value = rest.subspan(5, std::min(length, rest.size() - 5));
        const bool saysSomething = std::ranges::any_of(value, [](auto byte) { return byte > ' '; });
        if (rest[1] == 2 && saysSomething) traces |= meaningOf(rest[2]);
        rest = rest.subspan(5 + value.size());
    }
    return traces;
}

PersonalTraces tracesInResource(std::uint32_t number, ByteSpan data) {
    constexpr std::uint32_t datasets = 0x0404;
    constexpr std::uint32_t exif = 0x0422;
    constexpr std::uint32_t xmp = 0x0424;
    if (number == datasets) return tracesInDatasets(data);
    if (number == exif) return tracesInExif(data);
    return number == xmp ? tracesInXmp(data) : PersonalTraces{};
}

}  // namespace

// A resource: a mark, its number, a name with its length before it, the data's length, the data.
// Names and data are padded to even lengths.
PersonalTraces tracesInIptc(ByteSpan rest) {
    if (rest.size() < 4 || bigEndian(rest.first(4)) != resourceStart) return tracesInDatasets(rest);
    PersonalTraces traces;
    while (rest.size() > 6 && bigEndian(rest.first(4)) == resourceStart) {
        const std::uint32_t number = bigEndian(rest.subspan(4, 2));
        const std::size_t start = 6 + (rest[6] + 2U) / 2 * 2;
        if (rest.size() < start + 4) break;
        const std::size_t length = bigEndian(rest.subspan(start, 4));
        rest = rest.subspan(start + 4);
        traces |= tracesInResource(number, rest.first(std::min(length, rest.size())));
        rest = rest.subspan(std::min(length + length % 2, rest.size()));
    }
    return traces;
}

}  // namespace kalim::codec
