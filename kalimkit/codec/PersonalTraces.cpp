#include "kalimkit/codec/PersonalTraces.h"

#include <algorithm>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "kalimkit/codec/BlockPrefixes.h"
#include "kalimkit/codec/PictureChunks.h"
#include "kalimkit/codec/PngText.h"
#include "kalimkit/codec/WrappedBlock.h"

namespace kalim::codec {

namespace {

ByteSpan span(std::string_view text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Cuts the prefix off; false where the bytes begin otherwise.
bool takePrefix(ByteSpan& bytes, std::string_view prefix) {
    if (bytes.size() < prefix.size() ||
        !std::ranges::equal(bytes.first(prefix.size()), span(prefix)))
        return false;
    bytes = bytes.subspan(prefix.size());
    return true;
}

// A JPEG's segments end at 64 KiB, so longer blocks stand in several.
class JpegBlocks {
public:
    void add(const PictureChunk& segment) {
        ByteSpan data = segment.data;
        if (segment.type == 0xED && takePrefix(data, prefixes::photoshop))
            _photoshop.insert(_photoshop.end(), data.begin(), data.end());
        if (segment.type != 0xE1) return;
        if (takePrefix(data, prefixes::exif)) _traces |= tracesInExif(data);
        if (takePrefix(data, prefixes::xmp)) _traces |= tracesInXmp(data);
        if (takePrefix(data, prefixes::longXmp)) addLongXmp(data);
    }

    PersonalTraces traces() {
        for (const auto& [name, parts] : _longXmp) {
            Bytes whole;
            for (const auto& [offset, data] : parts)
                whole.insert(whole.end(), data.begin(), data.end());
            _traces |= tracesInXmp(whole);
        }
        _traces |= tracesInIptc(_photoshop);
        return _traces;
    }

private:
    // Behind the prefix: a name of 32 letters, the length of the whole and this part's place in it.
    void addLongXmp(ByteSpan data) {
        if (data.size() < 40) return;
        const std::string name(data.begin(), data.begin() + 32);
        _longXmp[name].emplace(bigEndian(data.subspan(36, 4)), data.subspan(40));
    }

    PersonalTraces _traces;
    Bytes _photoshop;
    std::map<std::string, std::map<std::uint32_t, ByteSpan>> _longXmp;
};

// The kinds of block that "Raw profile type" and "XML:com.adobe.xmp" name, and the format's own.
PersonalTraces tracesInText(const PngText& text) {
    if (text.keyword == "XML:com.adobe.xmp") return tracesInXmp(span(text.text));
    const bool isOwner = text.keyword == "Author" || text.keyword == "Copyright";
    if (isOwner && text.text.find_first_not_of(" \t\r\n") != std::string::npos)
        return {.owner = true};
    constexpr std::string_view wrapping = "Raw profile type ";
    if (text.keyword.rfind(wrapping, 0) != 0) return {};
    const std::string kind = text.keyword.substr(wrapping.size());
    const Bytes block = unwrappedBlock(text.text);
    ByteSpan rest = block;
    if (kind == "iptc" || kind == "8bim") return tracesInIptc(rest);
    if (kind != "exif" && kind != "APP1" && kind != "xmp") return {};
    if (takePrefix(rest, prefixes::exif)) return tracesInExif(rest);
    if (takePrefix(rest, prefixes::xmp) || kind == "xmp") return tracesInXmp(rest);
    return tracesInExif(rest);
}

PersonalTraces tracesInChunk(const PictureChunk& chunk) {
    constexpr std::size_t maxTextBytes = std::size_t{8} << 20U;
    ByteSpan data = chunk.data;
    switch (chunk.type) {
        case chunkType("eXIf"):
        case chunkType("EXIF"):
            takePrefix(data, prefixes::exif);
            return tracesInExif(data);
        case chunkType("XMP "):
            return tracesInXmp(data);
        default:
            break;
    }
    const auto text = readPngText(chunk, maxTextBytes);
    return text ? tracesInText(*text) : PersonalTraces{};
}

}  // namespace

PersonalTraces personalTraces(ByteSpan file) {
    const bool isJpeg = fileFormat(file) == FileFormat::Jpeg;
    PersonalTraces traces;
    JpegBlocks blocks;
    PictureChunks chunks(file);
    while (const auto chunk = chunks.next()) {
        if (isJpeg) {
            blocks.add(*chunk);
        } else {
            traces |= tracesInChunk(*chunk);
        }
    }
    return isJpeg ? blocks.traces() : traces;
}

}  // namespace kalim::codec
