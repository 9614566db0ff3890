#include "kalimkit/codec/PngText.h"

#include <zlib.h>

#include <algorithm>

#include "kalimkit/codec/Deflate.h"
#include "kalimkit/codec/PictureChunks.h"

namespace kalim::codec {

namespace {

constexpr std::uint32_t plainText = chunkType("tEXt");
constexpr std::uint32_t packedText = chunkType("zTXt");
constexpr std::uint32_t internationalText = chunkType("iTXt");

std::string_view letters(ByteSpan bytes) {
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

// Cuts off what stands before a zero byte, and the byte.
std::optional<std::string_view> takeField(ByteSpan& rest) {
    const auto zero = std::ranges::find(rest, 0);
    if (zero == rest.end()) return std::nullopt;
    const auto length = static_cast<std::size_t>(zero - rest.begin());
    const std::string_view field = letters(rest.first(length));
    rest = rest.subspan(length + 1);
    return field;
}

// Of the letters and the data, which stand one behind the other.
std::uint32_t checkSum(ByteSpan bytes) {
    return static_cast<std::uint32_t>(::crc32_z(0, bytes.data(), bytes.size()));
}

bool isIntact(const PictureChunk& chunk) {
    if (chunk.isCut) return false;
    const ByteSpan checked = chunk.whole.subspan(4, chunk.whole.size() - 8);
    return checkSum(checked) == bigEndian(chunk.whole.last(4));
}

// Whether the rest is packed, after the fields that stand between it and the keyword; nothing for
// what no program writes.
std::optional<bool> takeHead(std::uint32_t type, ByteSpan& rest) {
    if (type == plainText) return false;
    const std::size_t flagCount = type == packedText ? 1 : 2;
    if (rest.size() < flagCount) return std::nullopt;
    const bool isPacked = type == packedText || rest[0] == 1;
    const bool isKnown = rest[flagCount - 1] == 0 && (type == packedText || rest[0] <= 1);
    rest = rest.subspan(flagCount);
    if (!isKnown) return std::nullopt;
    if (type == packedText) return true;
    // The language and the translated keyword.
    if (!takeField(rest) || !takeField(rest)) return std::nullopt;
    return isPacked;
}

std::optional<std::string> readText(const PictureChunk& chunk, ByteSpan rest,
                                    std::size_t maxBytes) {
    const std::optional<bool> isPacked = takeHead(chunk.type, rest);
    if (!isPacked || !isIntact(chunk)) return std::nullopt;
    if (!*isPacked) return std::string(letters(rest));
    const std::optional<Bytes> text = inflated(rest, maxBytes);
    return text ? std::optional<std::string>(letters(*text)) : std::nullopt;
}

void append(Bytes& bytes, std::string_view text) {
    bytes.insert(bytes.end(), text.begin(), text.end());
}

void appendNumber(Bytes& bytes, std::size_t number) {
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
}

// Where the last chunk begins.
std::optional<std::size_t> endOffset(ByteSpan file) {
    PictureChunks chunks(file);
    while (const auto chunk = chunks.next()) {
        if (chunk->type == chunkType("IEND"))
            return static_cast<std::size_t>(chunk->whole.data() - file.data());
    }
    return std::nullopt;
}

}  // namespace

std::optional<PngText> readPngText(const PictureChunk& chunk, std::size_t maxBytes) {
    if (chunk.type != plainText && chunk.type != packedText && chunk.type != internationalText)
        return std::nullopt;
    ByteSpan rest = chunk.data;
    const auto keyword = takeField(rest);
    if (!keyword) return std::nullopt;
    PngText found{std::string(*keyword), {}, {}};
    if (auto text = readText(chunk, rest, maxBytes)) {
        found.text = std::move(*text);
    } else {
        found.error = "the text \"" + found.keyword + "\" inside is damaged";
    }
    return found;
}

std::optional<PngText> findPngText(ByteSpan file, std::string_view keyword, std::size_t maxBytes) {
    if (fileFormat(file) != FileFormat::Png) return std::nullopt;
    PictureChunks chunks(file);
    while (const auto chunk = chunks.next()) {
        // No other text is unpacked on the way.
        const std::string_view data = letters(chunk->data);
        const bool hasKeyword = data.substr(0, keyword.size()) == keyword &&
                                data.substr(keyword.size(), 1) == std::string_view("\0", 1);
        if (chunk->type == internationalText && hasKeyword) return readPngText(*chunk, maxBytes);
    }
    return std::nullopt;
}

std::optional<std::string> addPngText(Bytes& file, std::string_view keyword,
                                      std::string_view text) {
    constexpr std::size_t longestChunk = 0x7FFFFFFF;
    const std::optional<std::size_t> place =
        fileFormat(file) == FileFormat::Png ? endOffset(file) : std::nullopt;
    if (!place) return "a text goes into a whole PNG file only";
    Bytes data;
    append(data, "iTXt");
    append(data, keyword);
    // The end of the keyword, packed by zlib, no language and no translation.
    append(data, std::string_view("\0\1\0\0\0", 5));
    const Bytes packed =
        deflated({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
    data.insert(data.end(), packed.begin(), packed.end());
    if (data.size() - 4 > longestChunk) return "the text is too long for a PNG file";
    Bytes chunk;
    chunk.reserve(data.size() + 8);
    appendNumber(chunk, data.size() - 4);
    chunk.insert(chunk.end(), data.begin(), data.end());
    appendNumber(chunk, checkSum(data));
    file.insert(file.begin() + static_cast<std::ptrdiff_t>(*place), chunk.begin(), chunk.end());
    return std::nullopt;
}

}  // namespace kalim::codec
