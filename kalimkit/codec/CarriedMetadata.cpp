#include "kalimkit/codec/CarriedMetadata.h"

#include <algorithm>
#include <array>
#include <map>
#include <string_view>
#include <utility>

#include "kalimkit/codec/EmbeddedPictures.h"
#include "kalimkit/codec/ExifCarrying.h"
#include "kalimkit/codec/MetadataSource.h"
#include "kalimkit/codec/PhotoshopCarrying.h"
#include "kalimkit/codec/PictureChunks.h"
#include "kalimkit/codec/TiffStructure.h"
#include "kalimkit/codec/XmpCarrying.h"

namespace kalim::codec {

namespace {

using Block = CarriedMetadata::Block;

// A JPEG's segment holds no more behind the mark of Exif.
constexpr std::size_t longestJpegExif = 65527;
// Longer blocks that nobody knows might be pictures.
constexpr std::size_t longestUnknown = 32768;

void appendNumber(Bytes& bytes, std::size_t number) {
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
}

std::array<TiffDirectory*, 4> directoriesOf(TiffStructure& structure) {
    return {&structure.main, &structure.exif, &structure.place, &structure.exchange};
}

// At least as much as it needs, unless a value has its place.
std::size_t writtenSize(TiffStructure& structure) {
    std::size_t size = 100;
    for (const TiffDirectory* directory : directoriesOf(structure)) {
        for (const TiffEntry& entry : *directory)
            size += entry.value.size() + 13;
    }
    return size;
}

void dropLongest(TiffStructure& structure) {
    TiffDirectory* from = nullptr;
    std::size_t longest = 0;
    for (TiffDirectory* directory : directoriesOf(structure)) {
        for (const TiffEntry& entry : *directory) {
            if (entry.value.size() <= longest) continue;
            longest = entry.value.size();
            from = directory;
        }
    }
    if (!from) return;
    std::erase_if(*from, [longest](const auto& entry) { return entry.value.size() == longest; });
}

// A JPEG has room for so much alone; the note of the maker goes first, then the longest values.
Bytes writtenExif(TiffStructure structure, FileFormat format) {
    if (structure.isEmpty()) return {};
    Bytes written = writeTiff(structure);
    if (format != FileFormat::Jpeg || written.size() <= longestJpegExif) return written;
    std::erase_if(structure.exif, [](const auto& entry) { return entry.tag == makerNoteTag; });
    while (writtenSize(structure) > longestJpegExif)
        dropLongest(structure);
    return writeTiff(structure);
}

void addBlock(CarriedMetadata& carried, const MetadataSource::Block& block) {
    carried.blocks.push_back({block.type, {block.data.begin(), block.data.end()}});
}

// A text in UTF-8, of no language, not packed.
Block textBlock(std::string_view keyword, std::string_view text) {
    Block block{chunkType("iTXt"), {keyword.begin(), keyword.end()}};
    block.data.insert(block.data.end(), 5, 0);
    block.data.insert(block.data.end(), text.begin(), text.end());
    return block;
}

// What Exif says where the format's own field says nothing.
std::optional<PixelDensity> densityInExif(const TiffStructure& exif) {
    const auto numberAt = [&](ByteSpan bytes) {
        return exif.isBigEndian ? bigEndian(bytes) : littleEndian(bytes);
    };
    const auto resolution = [&](std::uint16_t tag) {
        const TiffEntry* const entry = findEntry(exif.main, tag);
        if (!entry || entry->type != tiffType::rational || entry->value.size() != 8) return 0U;
        const std::uint32_t above = numberAt(ByteSpan(entry->value).first(4));
        const std::uint32_t below = numberAt(ByteSpan(entry->value).last(4));
        return below == 0 ? 0 : above / below;
    };
    const TiffEntry* const unit = findEntry(exif.main, 0x0128);
    const bool isCentimetre = unit && unit->value.size() == 2 && numberAt(unit->value) == 3;
    const std::uint32_t x = resolution(0x011A);
    const std::uint32_t y = resolution(0x011B);
    if (x == 0 || y == 0 || std::max(x, y) > 65535) return std::nullopt;
    return PixelDensity{static_cast<std::uint8_t>(isCentimetre ? 2 : 1),
                        static_cast<std::uint16_t>(x), static_cast<std::uint16_t>(y)};
}

// PNG counts pixels per metre.
std::optional<Block> densityBlock(const PixelDensity& density) {
    if (density.unit == 0 && density.x == density.y) return std::nullopt;
    constexpr double inch = 0.0254;
    const double scale = density.unit == 1 ? 1 / inch : density.unit == 2 ? 100 : 1;
    Block block{chunkType("pHYs"), {}};
    appendNumber(block.data, static_cast<std::size_t>(density.x * scale + 0.5));
    appendNumber(block.data, static_cast<std::size_t>(density.y * scale + 0.5));
    block.data.push_back(density.unit == 0 ? 0 : 1);
    return block;
}

// Of the source's parts the first that tells.
std::string copyrightOf(const MetadataSource& source) {
    for (const MetadataSource::Text& one : source.texts) {
        if (one.text.keyword == "Copyright") return one.text.text;
    }
    std::string copyright = copyrightInPhotoshop(source.photoshop);
    return asUtf8(copyright.empty() ? copyrightInXmp(source.xmp) : copyright);
}

void addSafeBlocks(CarriedMetadata& carried, const MetadataSource& source, FileFormat format) {
    constexpr std::size_t longestCopyright = 2000;
    constexpr std::size_t longestTime = 40;
    if (source.format != FileFormat::Png || format != FileFormat::Png) return;
    for (const auto& [text, block] : source.texts) {
        const std::size_t longest = text.keyword == "Copyright"       ? longestCopyright
                                    : text.keyword == "Creation Time" ? longestTime
                                                                      : 0;
        if (!text.text.empty() && text.text.size() <= longest)
            carried.blocks.push_back(textBlock(text.keyword, text.text));
    }
    for (const MetadataSource::Block& block : source.blocks) {
        if (block.type == chunkType("tIME")) addBlock(carried, block);
    }
}

ByteSpan bytesOf(const std::string& text) {
    return {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()};
}

// Comments are the only texts that a JPEG has beside its blocks.
void addTexts(CarriedMetadata& carried, const MetadataSource& source, FileFormat format) {
    constexpr std::uint32_t comment = 0xFE;
    for (const std::string& text : source.comments) {
        if (holdsPicture(bytesOf(text))) continue;
        if (format == FileFormat::Jpeg)
            carried.blocks.push_back({comment, {text.begin(), text.end()}});
        if (format == FileFormat::Png)
            carried.blocks.push_back(textBlock("Comment", asUtf8(text.substr(0, text.find('\0')))));
    }
    for (const auto& [text, block] : source.texts) {
        if (holdsPicture(bytesOf(text.text))) continue;
        if (format == FileFormat::Png) addBlock(carried, block);
        if (format == FileFormat::Jpeg && text.keyword == "Comment")
            carried.blocks.push_back({comment, {text.text.begin(), text.text.end()}});
    }
}

// A picture may go over several segments of a JPEG, so one that begins drops all of that kind.
void addUnknownBlocks(CarriedMetadata& carried, const MetadataSource& source) {
    std::map<std::uint32_t, std::size_t> lengths;
    for (const MetadataSource::Block& block : source.blocks)
        lengths[block.type] += holdsPicture(block.data) ? longestUnknown + 1 : block.data.size();
    for (const MetadataSource::Block& block : source.blocks) {
        if (lengths[block.type] <= longestUnknown) addBlock(carried, block);
    }
}

}  // namespace

CarriedMetadata carriedMetadata(ByteSpan sourceFile, Metadata mode, const MetadataFacts& facts) {
    CarriedMetadata carried;
    if (mode == Metadata::None || fileFormat(sourceFile) == FileFormat::Other) {
        carried.exif = writtenExif(bareExif(facts), facts.format);
        return carried;
    }
    const MetadataSource source = readMetadata(sourceFile);
    const TiffStructure exif = readTiff(source.exif).value_or(TiffStructure{});
    if (const auto density = source.density ? source.density : densityInExif(exif))
        carried.density = *density;
    if (mode == Metadata::Safe) {
        carried.exif = writtenExif(safeExif(exif, facts, copyrightOf(source)), facts.format);
        addSafeBlocks(carried, source, facts.format);
    } else {
        carried.exif = writtenExif(keptExif(exif, facts), facts.format);
        carried.xmp = keptXmp(source.xmp, facts);
        if (facts.format != FileFormat::Webp) carried.photoshop = keptPhotoshop(source.photoshop);
        addTexts(carried, source, facts.format);
        if (source.format == facts.format) addUnknownBlocks(carried, source);
    }
    const auto density = densityBlock(carried.density);
    if (density && facts.format == FileFormat::Png) carried.blocks.push_back(*density);
    return carried;
}

}  // namespace kalim::codec
