#include "kalimkit/codec/PhotoshopCarrying.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include "kalimkit/codec/EmbeddedPictures.h"
#include "kalimkit/codec/PictureChunks.h"

namespace kalim::codec {

namespace {

// Photoshop's own, and those of programs that have joined it.
constexpr std::array resourceStarts{chunkType("8BIM"), chunkType("PHUT"), chunkType("DCSR"),
                                    chunkType("AgHg"), chunkType("MeSa")};
constexpr std::uint8_t datasetStart = 0x1C;
constexpr std::uint32_t iptcNumber = 0x0404;
// The check sum by which Photoshop sees that others have changed the IPTC.
constexpr std::uint32_t iptcCheckSum = 0x0425;

// Two kinds of thumbnail; the profile, Exif in two parts, XMP.
constexpr std::array<std::uint32_t, 6> droppedNumbers{0x0409, 0x040C, 0x040F,
                                                      0x0422, 0x0423, 0x0424};

// A mark, its number, a name with its length before it, the data's length, the data. Names and data
// are padded to even lengths.
struct Resource {
    std::uint32_t number = 0;
    // All before the data's length.
    ByteSpan head;
    ByteSpan data;
};

std::optional<Resource> takeResource(ByteSpan& rest) {
    if (rest.size() <= 6 || std::ranges::count(resourceStarts, bigEndian(rest.first(4))) == 0)
        return std::nullopt;
    const std::size_t headSize = 6 + (rest[6] + 2U) / 2 * 2;
    if (rest.size() < headSize + 4) return std::nullopt;
    const std::size_t length = bigEndian(rest.subspan(headSize, 4));
    if (rest.size() - headSize - 4 < length) return std::nullopt;
    const Resource resource{bigEndian(rest.subspan(4, 2)), rest.first(headSize),
                            rest.subspan(headSize + 4, length)};
    rest = rest.subspan(std::min(headSize + 4 + length + length % 2, rest.size()));
    return resource;
}

// A mark, record, number, length, value. A length of more than 15 bits stands behind the length of
// itself.
struct Dataset {
    unsigned record = 0;
    unsigned number = 0;
    ByteSpan value;
    ByteSpan whole;
};

std::optional<Dataset> takeDataset(ByteSpan& rest) {
    if (rest.size() < 5 || rest[0] != datasetStart) return std::nullopt;
    std::size_t length = bigEndian(rest.subspan(3, 2));
    std::size_t start = 5;
    if (length >= 0x8000) {
        const std::size_t lengthSize = length - 0x8000;
        if (lengthSize > 4 || rest.size() < start + lengthSize) return std::nullopt;
        length = bigEndian(rest.subspan(start, lengthSize));
        start += lengthSize;
    }
    if (rest.size() - start < length) return std::nullopt;
    const Dataset dataset{rest[1], rest[2], rest.subspan(start, length),
                          rest.first(start + length)};
    rest = rest.subspan(start + length);
    return dataset;
}

void append(Bytes& bytes, ByteSpan more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

// The fields from 200 to 202 of the second record hold a small picture, the records from 7 on the
// large one.
Bytes keptDatasets(ByteSpan rest) {
    Bytes kept;
    while (const auto dataset = takeDataset(rest)) {
        const bool isPreview =
            dataset->record == 2 && dataset->number >= 200 && dataset->number <= 202;
        const bool isPicture = dataset->record >= 7 || holdsPicture(dataset->value);
        if (!isPreview && !isPicture) append(kept, dataset->whole);
    }
    return kept;
}

void putResource(Bytes& bytes, ByteSpan head, ByteSpan data) {
    append(bytes, head);
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        bytes.push_back(static_cast<std::uint8_t>(data.size() >> shift));
    append(bytes, data);
    if (data.size() % 2 != 0) bytes.push_back(0);
}

ByteSpan iptcOf(ByteSpan rest) {
    if (!rest.empty() && rest[0] == datasetStart) return rest;
    while (const auto resource = takeResource(rest)) {
        if (resource->number == iptcNumber) return resource->data;
    }
    return {};
}

}  // namespace

Bytes keptPhotoshop(ByteSpan resources) {
    constexpr std::array<std::uint8_t, 8> iptcHead{'8', 'B', 'I', 'M', 4, 4, 0, 0};
    const ByteSpan source = iptcOf(resources);
    const Bytes datasets = keptDatasets(source);
    Bytes kept;
    if (!resources.empty() && resources[0] == datasetStart) {
        if (!datasets.empty()) putResource(kept, iptcHead, datasets);
        return kept;
    }
    while (const auto resource = takeResource(resources)) {
        if (resource->number == iptcNumber) {
            // Whoever has several reads the first.
            if (resource->data.data() == source.data()) putResource(kept, resource->head, datasets);
            continue;
        }
        if (std::ranges::count(droppedNumbers, resource->number) > 0) continue;
        if (resource->number == iptcCheckSum && datasets.size() != source.size()) continue;
        if (!holdsPicture(resource->data)) putResource(kept, resource->head, resource->data);
    }
    return kept;
}

std::string copyrightInPhotoshop(ByteSpan resources) {
    ByteSpan rest = iptcOf(resources);
    while (const auto dataset = takeDataset(rest)) {
        if (dataset->record == 2 && dataset->number == 116)
            return {dataset->value.begin(), dataset->value.end()};
    }
    return {};
}

}  // namespace kalim::codec
