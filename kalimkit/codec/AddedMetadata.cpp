#include <zlib.h>

#include <algorithm>
#include <string_view>
#include <utility>

#include "kalimkit/codec/BlockPrefixes.h"
#include "kalimkit/codec/CarriedMetadata.h"
#include "kalimkit/codec/Deflate.h"
#include "kalimkit/codec/Md5.h"
#include "kalimkit/codec/PictureChunks.h"
#include "kalimkit/codec/WrappedBlock.h"

namespace kalim::codec {

namespace {

using std::string_view_literals::operator""sv;
using Block = CarriedMetadata::Block;

void append(Bytes& bytes, ByteSpan more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void append(Bytes& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

void appendBigEndian(Bytes& bytes, std::size_t number, unsigned byteCount) {
    while (byteCount-- > 0)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * byteCount)));
}

void appendLittleEndian(Bytes& bytes, std::size_t number, unsigned byteCount) {
    for (unsigned i = 0; i < byteCount; ++i)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i)));
}

void insert(Bytes& file, std::size_t offset, const Bytes& bytes) {
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(offset), bytes.begin(), bytes.end());
}

// ---- JPEG

constexpr std::uint32_t app1 = 0xE1;
constexpr std::uint32_t app13 = 0xED;
constexpr std::size_t longestSegment = 65533;

// What is too long for a segment is left out.
void appendSegment(Bytes& bytes, std::uint32_t type, std::string_view prefix, ByteSpan data) {
    if (prefix.size() + data.size() > longestSegment) return;
    bytes.push_back(0xFF);
    bytes.push_back(static_cast<std::uint8_t>(type));
    appendBigEndian(bytes, prefix.size() + data.size() + 2, 2);
    append(bytes, prefix);
    append(bytes, data);
}

// All of it is the continuation then, and the packet only says so.
void appendLongXmp(Bytes& bytes, ByteSpan xmp) {
    const std::string name = md5(xmp);
    const std::string link =
        "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">"
        "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
        "<rdf:Description rdf:about=\"\" xmlns:xmpNote=\"http://ns.adobe.com/xmp/note/\" "
        "xmpNote:HasExtendedXMP=\"" +
        name + "\"/></rdf:RDF></x:xmpmeta>";
    appendSegment(bytes, app1, std::string(prefixes::xmp) + link, {});
    constexpr std::size_t partSize = 65400;
    for (std::size_t offset = 0; offset < xmp.size(); offset += partSize) {
        Bytes part;
        append(part, name);
        appendBigEndian(part, xmp.size(), 4);
        appendBigEndian(part, offset, 4);
        append(part, xmp.subspan(offset, std::min(partSize, xmp.size() - offset)));
        appendSegment(bytes, app1, prefixes::longXmp, part);
    }
}

std::optional<std::string> addToJpeg(Bytes& file, const CarriedMetadata& carried) {
    std::size_t place = 2;
    constexpr std::string_view jfif = "\xFF\xE0\0\x10JFIF\0"sv;
    if (file.size() >= 20 &&
        std::equal(jfif.begin(), jfif.end(), file.begin() + 2, [](char letter, std::uint8_t byte) {
            return static_cast<std::uint8_t>(letter) == byte;
        })) {
        Bytes density{carried.density.unit};
        appendBigEndian(density, carried.density.x, 2);
        appendBigEndian(density, carried.density.y, 2);
        std::ranges::copy(density, file.begin() + 13);
        place = 20;
    }
    Bytes added;
    if (!carried.exif.empty()) appendSegment(added, app1, prefixes::exif, carried.exif);
    if (carried.xmp.size() > longestSegment - prefixes::xmp.size()) {
        appendLongXmp(added, carried.xmp);
    } else if (!carried.xmp.empty()) {
        appendSegment(added, app1, prefixes::xmp, carried.xmp);
    }
    constexpr std::size_t partSize = 65000;
    for (std::size_t at = 0; at < carried.photoshop.size(); at += partSize) {
        const ByteSpan rest = ByteSpan(carried.photoshop).subspan(at);
        appendSegment(added, app13, prefixes::photoshop,
                      rest.first(std::min(partSize, rest.size())));
    }
    for (const Block& block : carried.blocks)
        appendSegment(added, block.type, {}, block.data);
    insert(file, place, added);
    return std::nullopt;
}

// ---- PNG

void appendChunk(Bytes& bytes, std::uint32_t type, ByteSpan data) {
    appendBigEndian(bytes, data.size(), 4);
    const std::size_t start = bytes.size();
    appendBigEndian(bytes, type, 4);
    append(bytes, data);
    appendBigEndian(bytes, ::crc32_z(0, bytes.data() + start, bytes.size() - start), 4);
}

void appendWrapped(Bytes& bytes, std::string_view kind, ByteSpan block) {
    const std::string text = wrappedBlock(kind, block);
    Bytes data;
    append(data, "Raw profile type ");
    append(data, kind);
    // The end of the keyword, and that zlib has packed what follows.
    append(data, "\0\0"sv);
    append(data, deflated({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}));
    appendChunk(bytes, chunkType("zTXt"), data);
}

std::optional<std::string> addToPng(Bytes& file, const CarriedMetadata& carried) {
    std::optional<std::size_t> place;
    PictureChunks chunks(file);
    while (const auto chunk = place ? std::nullopt : chunks.next()) {
        if (chunk->type == chunkType("IDAT"))
            place = static_cast<std::size_t>(chunk->whole.data() - file.data());
    }
    if (!place) return "the PNG file has no pixels";
    Bytes added;
    if (!carried.exif.empty()) appendChunk(added, chunkType("eXIf"), carried.exif);
    if (!carried.xmp.empty()) {
        Bytes text;
        append(text, "XML:com.adobe.xmp\0\0\0\0\0"sv);
        append(text, carried.xmp);
        appendChunk(added, chunkType("iTXt"), text);
    }
    if (!carried.photoshop.empty()) appendWrapped(added, "iptc", carried.photoshop);
    for (const Block& block : carried.blocks)
        appendChunk(added, block.type, block.data);
    insert(file, *place, added);
    return std::nullopt;
}

// ---- WebP

constexpr std::uint8_t alphaFlag = 0x10;
constexpr std::uint8_t exifFlag = 0x08;
constexpr std::uint8_t xmpFlag = 0x04;

void appendRiff(Bytes& bytes, std::uint32_t type, ByteSpan data) {
    appendBigEndian(bytes, type, 4);
    appendLittleEndian(bytes, data.size(), 4);
    append(bytes, data);
    if (data.size() % 2 != 0) bytes.push_back(0);
}

// The head of a file with more than pixels, from the sides that these tell.
std::optional<Bytes> canvasOf(const PictureChunk& pixels) {
    const ByteSpan data = pixels.data;
    Bytes canvas(4);
    if (pixels.type == chunkType("VP8 ") && data.size() >= 10) {
        // The head of a key frame: 14 bits of each side, and 2 of scaling.
        appendLittleEndian(canvas, (littleEndian(data.subspan(6, 2)) & 0x3FFFU) - 1, 3);
        appendLittleEndian(canvas, (littleEndian(data.subspan(8, 2)) & 0x3FFFU) - 1, 3);
    } else if (pixels.type == chunkType("VP8L") && data.size() >= 5) {
        // Behind a mark 14 bits of each side less one, then whether there is alpha.
        const std::uint32_t bits = littleEndian(data.subspan(1, 4));
        appendLittleEndian(canvas, bits & 0x3FFFU, 3);
        appendLittleEndian(canvas, bits >> 14U & 0x3FFFU, 3);
        if ((bits >> 28U & 1U) != 0) canvas[0] = alphaFlag;
    } else {
        return std::nullopt;
    }
    return canvas;
}

std::optional<std::string> addToWebp(Bytes& file, const CarriedMetadata& carried) {
    constexpr std::size_t headSize = 12;
    constexpr std::size_t canvasSize = 18;
    if (carried.exif.empty() && carried.xmp.empty() && carried.blocks.empty()) return std::nullopt;
    const auto first = PictureChunks(file).next();
    if (!first || first->isCut) return "the WebP file has no pixels";
    if (first->type != chunkType("VP8X")) {
        const auto canvas = canvasOf(*first);
        if (!canvas) return "the WebP file has no pixels";
        Bytes added;
        appendRiff(added, chunkType("VP8X"), *canvas);
        insert(file, headSize, added);
    }
    if (file.size() < headSize + canvasSize) return "the WebP file has no pixels";
    std::uint8_t& flags = file[headSize + 8];
    if (!carried.exif.empty()) flags |= exifFlag;
    if (!carried.xmp.empty()) flags |= xmpFlag;
    if (!carried.exif.empty()) appendRiff(file, chunkType("EXIF"), carried.exif);
    if (!carried.xmp.empty()) appendRiff(file, chunkType("XMP "), carried.xmp);
    for (const Block& block : carried.blocks)
        appendRiff(file, block.type, block.data);
    Bytes size;
    appendLittleEndian(size, file.size() - 8, 4);
    std::ranges::copy(size, file.begin() + 4);
    return std::nullopt;
}

}  // namespace

std::optional<std::string> addMetadata(Bytes& freshFile, const CarriedMetadata& carried) {
    switch (fileFormat(freshFile)) {
        case FileFormat::Jpeg:
            return addToJpeg(freshFile, carried);
        case FileFormat::Png:
            return addToPng(freshFile, carried);
        case FileFormat::Webp:
            return addToWebp(freshFile, carried);
        case FileFormat::Other:
            break;
    }
    return "data go into a JPEG, PNG or WebP file only";
}

}  // namespace kalim::codec
