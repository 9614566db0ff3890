#include "kalimkit/codec/MetadataSource.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

#include "kalimkit/codec/BlockPrefixes.h"
#include "kalimkit/codec/PictureChunks.h"
#include "kalimkit/codec/WrappedBlock.h"
#include "kalimkit/codec/XmpCarrying.h"
#include "kalimkit/gfx/Utf8.h"

namespace kalim::codec {

namespace {

using std::string_view_literals::operator""sv;

constexpr std::uint8_t endOfImage = 0xD9;
constexpr std::uint8_t comment = 0xFE;
constexpr std::uint8_t app0 = 0xE0;
constexpr std::uint8_t app1 = 0xE1;
constexpr std::uint8_t app11 = 0xEB;
constexpr std::uint8_t app13 = 0xED;
constexpr std::uint8_t app14 = 0xEE;

// The profile; tables of pictures behind the file's end, of gains over it among them; a format with
// pictures; a heat picture; Adobe's mark of how colours are coded.
constexpr std::array droppedSegments{"ICC_PROFILE\0"sv, "MPF\0"sv,  "urn:iso:std:iso:ts:21496"sv,
                                     "FPXR\0"sv,        "FLIR\0"sv, "JFXX\0"sv,
                                     "Adobe"sv};

// All that says how pixels and colours are stored.
constexpr std::array droppedChunks{
    chunkType("gAMA"), chunkType("cHRM"), chunkType("iCCP"), chunkType("sRGB"),
    chunkType("cICP"), chunkType("mDCv"), chunkType("cLLi"), chunkType("sBIT"),
    chunkType("bKGD"), chunkType("tRNS"), chunkType("hIST"),
};

// The document that a PNG of ours holds has the picture without what hides it.
constexpr std::string_view documentKeyword = "kalimkit";

// No file that a program writes has more of a kind.
constexpr std::size_t mostParts = 1000;
constexpr std::size_t longestData = std::size_t{16} << 20U;
constexpr std::size_t maxTextBytes = std::size_t{8} << 20U;
constexpr std::size_t maxAllTextBytes = std::size_t{32} << 20U;

bool startsWith(ByteSpan bytes, std::string_view start) {
    return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size())
        .starts_with(start);
}

bool takePrefix(ByteSpan& bytes, std::string_view prefix) {
    if (!startsWith(bytes, prefix)) return false;
    bytes = bytes.subspan(prefix.size());
    return true;
}

void takeFirst(Bytes& target, ByteSpan bytes) {
    if (target.empty() && bytes.size() <= longestData) target.assign(bytes.begin(), bytes.end());
}

void append(Bytes& target, ByteSpan bytes) {
    if (bytes.size() > longestData - target.size()) return;
    target.insert(target.end(), bytes.begin(), bytes.end());
}

template <typename Part>
void addPart(std::vector<Part>& parts, Part part) {
    if (parts.size() < mostParts) parts.push_back(std::move(part));
}

class JpegReading {
public:
    explicit JpegReading(MetadataSource& found) : _found(found) {}

    void add(const PictureChunk& segment) {
        const bool isData =
            segment.type == comment || (segment.type >= app0 && segment.type <= 0xEF);
        if (!isData || segment.isCut) return;
        ByteSpan data = segment.data;
        if (segment.type == comment) {
            addPart(_found.comments, std::string(data.begin(), data.end()));
        } else if (segment.type == app0 && startsWith(data, "JFIF\0"sv)) {
            readDensity(data);
        } else if (segment.type == app13 && takePrefix(data, prefixes::photoshop)) {
            append(_found.photoshop, data);
        } else if (segment.type != app1 || !takeApp1(data)) {
            addBlock(segment);
        }
    }

    void finish() {
        const std::string_view main(reinterpret_cast<const char*>(_found.xmp.data()),
                                    _found.xmp.size());
        for (const auto& [name, parts] : _longXmp) {
            // Others are left over from what another program has written.
            if (main.find(name) == std::string_view::npos) continue;
            Bytes whole;
            for (const auto& [offset, data] : parts)
                append(whole, data);
            _found.xmp = joinedXmp(_found.xmp, whole);
            return;
        }
    }

private:
    void readDensity(ByteSpan data) {
        if (data.size() < 12 || data[7] > 2 || _found.density) return;
        _found.density =
            PixelDensity{data[7], static_cast<std::uint16_t>(bigEndian(data.subspan(8, 2))),
                         static_cast<std::uint16_t>(bigEndian(data.subspan(10, 2)))};
    }

    bool takeApp1(ByteSpan data) {
        if (takePrefix(data, prefixes::exif)) {
            takeFirst(_found.exif, data);
        } else if (takePrefix(data, prefixes::xmp)) {
            takeFirst(_found.xmp, data);
        } else if (takePrefix(data, prefixes::longXmp)) {
            addLongXmp(data);
        } else {
            return false;
        }
        return true;
    }

    // Behind the prefix: a name of 32 letters, the length of the whole and this part's place in it.
    void addLongXmp(ByteSpan data) {
        if (data.size() < 40 || ++_longXmpCount > mostParts) return;
        const std::string name(data.begin(), data.begin() + 32);
        _longXmp[name].emplace(bigEndian(data.subspan(36, 4)), data.subspan(40));
    }

    // What is signed holds thumbnails, and its signature is no longer true (JUMBF).
    void addBlock(const PictureChunk& segment) {
        if (segment.type == app11 || segment.type == app14) return;
        for (const std::string_view prefix : droppedSegments) {
            if (startsWith(segment.data, prefix)) return;
        }
        addPart(_found.blocks, {segment.type, segment.data});
    }

    MetadataSource& _found;
    std::map<std::string, std::map<std::uint32_t, ByteSpan>> _longXmp;
    std::size_t _longXmpCount = 0;
};

std::string fromLatin(std::string_view text) {
    std::string utf8;
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x80) {
            utf8 += letter;
        } else {
            utf8 += static_cast<char>(0xC0 | code >> 6U);
            utf8 += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return utf8;
}

// A reader refuses a file with another.
bool isOfLetters(std::uint32_t chunkType) {
    for (unsigned shift = 0; shift < 32; shift += 8) {
        const std::uint32_t letter = (chunkType >> shift & 0xFFU) | 0x20U;
        if (letter < 'a' || letter > 'z') return false;
    }
    return true;
}

class PngReading {
public:
    explicit PngReading(MetadataSource& found) : _found(found) {}

    void add(const PictureChunk& chunk) {
        ByteSpan data = chunk.data;
        if (chunk.isCut) return;
        switch (chunk.type) {
            case chunkType("eXIf"):
                takePrefix(data, prefixes::exif);
                return takeFirst(_found.exif, data);
            case chunkType("pHYs"):
                return readDensity(data);
            case chunkType("tIME"):
                if (data.size() == 7) addBlock(chunk);
                return;
            case chunkType("tEXt"):
            case chunkType("zTXt"):
            case chunkType("iTXt"):
                return addText(chunk);
            default:
                break;
        }
        // Those that others may copy without knowing them, by the case of their letters.
        constexpr std::uint32_t ancillary = 0x20000000;
        constexpr std::uint32_t safeToCopy = 0x20;
        const bool isSafe = (chunk.type & ancillary) != 0 && (chunk.type & safeToCopy) != 0;
        if (isSafe && isOfLetters(chunk.type) && std::ranges::count(droppedChunks, chunk.type) == 0)
            addBlock(chunk);
    }

private:
    void addBlock(const PictureChunk& chunk) { addPart(_found.blocks, {chunk.type, chunk.data}); }

    void readDensity(ByteSpan data) {
        if (data.size() != 9 || data[8] > 1 || _found.density) return;
        const std::uint32_t x = bigEndian(data.first(4));
        const std::uint32_t y = bigEndian(data.subspan(4, 4));
        constexpr double inch = 0.0254;
        const double scale = data[8] == 1 ? inch : 1;
        const double longest = std::max(x, y) * scale;
        if (x == 0 || y == 0 || longest > 65535) return;
        _found.density = PixelDensity{data[8], static_cast<std::uint16_t>(x * scale + 0.5),
                                      static_cast<std::uint16_t>(y * scale + 0.5)};
    }

    void addText(const PictureChunk& chunk) {
        if (chunk.data.size() > maxTextBytes) return;
        auto text = readPngText(chunk, std::min(maxTextBytes, _textBudget));
        if (!text || text->error || text->keyword == documentKeyword) return;
        _textBudget -= std::min(_textBudget, text->text.size());
        const ByteSpan bytes(reinterpret_cast<const std::uint8_t*>(text->text.data()),
                             text->text.size());
        if (text->keyword == "XML:com.adobe.xmp") return takeFirst(_found.xmp, bytes);
        if (text->keyword.starts_with("Raw profile type ")) return addWrapped(*text);
        // Nothing travels behind a text's end.
        text->text.resize(std::min(text->text.find('\0'), text->text.size()));
        if (chunk.type != chunkType("iTXt")) text->text = fromLatin(text->text);
        addPart(_found.texts, {std::move(*text), {chunk.type, chunk.data}});
    }

    void addWrapped(const PngText& text) {
        const std::string_view kind = std::string_view(text.keyword).substr(17);
        const Bytes block = unwrappedBlock(text.text);
        ByteSpan rest = block;
        if (kind == "iptc" || kind == "8bim") return takeFirst(_found.photoshop, rest);
        if (kind != "exif" && kind != "APP1" && kind != "xmp") return;
        if (takePrefix(rest, prefixes::xmp) || kind == "xmp") return takeFirst(_found.xmp, rest);
        takePrefix(rest, prefixes::exif);
        takeFirst(_found.exif, rest);
    }

    MetadataSource& _found;
    std::size_t _textBudget = maxAllTextBytes;
};

void addWebpChunk(MetadataSource& found, const PictureChunk& chunk) {
    ByteSpan data = chunk.data;
    if (chunk.isCut) return;
    switch (chunk.type) {
        case chunkType("EXIF"):
            takePrefix(data, prefixes::exif);
            return takeFirst(found.exif, data);
        case chunkType("XMP "):
            return takeFirst(found.xmp, data);
        case chunkType("VP8X"):
        case chunkType("VP8 "):
        case chunkType("VP8L"):
        case chunkType("ALPH"):
        case chunkType("ANIM"):
        case chunkType("ANMF"):
        case chunkType("ICCP"):
        // Signed, as above.
        case chunkType("C2PA"):
            return;
        default:
            addPart(found.blocks, {chunk.type, data});
    }
}

}  // namespace

MetadataSource readMetadata(ByteSpan file) {
    MetadataSource found;
    found.format = fileFormat(file);
    // Nothing behind the end counts.
    if (found.format == FileFormat::Webp)
        file = file.first(std::min<std::size_t>(file.size() - 8, littleEndian(file.subspan(4, 4))) +
                          8);
    JpegReading jpeg(found);
    PngReading png(found);
    PictureChunks chunks(file);
    while (const auto chunk = chunks.next()) {
        if (found.format == FileFormat::Jpeg) {
            if (chunk->type == endOfImage) break;
            jpeg.add(*chunk);
        } else if (found.format == FileFormat::Png) {
            if (chunk->type == chunkType("IEND")) break;
            png.add(*chunk);
        } else {
            addWebpChunk(found, *chunk);
        }
    }
    jpeg.finish();
    return found;
}

std::string asUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        const gfx::CodePoint letter = gfx::decodeUtf8(text, at);
        if (letter == gfx::CodePoint{}) return fromLatin(text);
        at += letter.byteCount;
    }
    return std::string(text);
}

}  // namespace kalim::codec
