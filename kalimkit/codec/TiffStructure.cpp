#include "kalimkit/codec/TiffStructure.h"

#include <algorithm>
#include <array>
#include <utility>

#include "kalimkit/codec/PictureChunks.h"

namespace kalim::codec {

namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t entrySize = 12;

// Exif knows fewer than 200 fields in all.
constexpr std::size_t mostEntries = 1000;

// The fields that lead from one directory to another.
constexpr std::uint16_t exifLink = 0x8769;
constexpr std::uint16_t placeLink = 0x8825;
constexpr std::uint16_t exchangeLink = 0xA005;

// Bytes of one number of the type, 0 for an unknown one.
std::size_t sizeOfType(std::uint32_t type) {
    constexpr std::array<std::size_t, 14> sizes{0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};
    if (type == tiffType::utf8) return 1;
    return type < sizes.size() ? sizes[type] : 0;
}

class TiffReader {
public:
    explicit TiffReader(ByteSpan block) : _block(block), _budget(block.size()) {}

    std::optional<TiffStructure> read() {
        if (_block.size() < headerSize || _block[0] != _block[1]) return std::nullopt;
        if (_block[0] != 'I' && _block[0] != 'M') return std::nullopt;
        _structure.isBigEndian = _block[0] == 'M';
        if (number(2, 2) != 42) return std::nullopt;
        readDirectory(number(4, 4), _structure.main);
        // No link is followed but these, each once, so that no circle of them is.
        readDirectory(_exif, _structure.exif);
        readDirectory(_place, _structure.place);
        readDirectory(_exchange, _structure.exchange);
        return std::move(_structure);
    }

private:
    // The caller has seen that it lies in the block.
    std::uint32_t number(std::size_t offset, std::size_t byteCount) const {
        const ByteSpan bytes = _block.subspan(offset, byteCount);
        return _structure.isBigEndian ? bigEndian(bytes) : littleEndian(bytes);
    }

    void readDirectory(std::size_t offset, TiffDirectory& directory) {
        if (offset < headerSize || offset > _block.size() || _block.size() - offset < 2) return;
        const std::size_t first = offset + 2;
        const std::size_t count = std::min<std::size_t>(
            {number(offset, 2), mostEntries, (_block.size() - first) / entrySize});
        for (std::size_t i = 0; i < count; ++i)
            readEntry(first + i * entrySize, directory);
        std::ranges::sort(directory, {}, &TiffEntry::tag);
    }

    void readEntry(std::size_t at, TiffDirectory& directory) {
        TiffEntry entry{static_cast<std::uint16_t>(number(at, 2)),
                        static_cast<std::uint16_t>(number(at + 2, 2)),
                        {},
                        0};
        const std::size_t count = number(at + 4, 4);
        if (count > _block.size()) return;
        const std::size_t length = sizeOfType(entry.type) * count;
        std::size_t offset = at + 8;
        if (length > 4) offset = number(offset, 4);
        if (length == 0 || offset > _block.size() || _block.size() - offset < length) return;
        if (takeLink(entry.tag, length == 4 ? number(offset, 4) : 0)) return;
        if (length > _budget || findEntry(directory, entry.tag)) return;
        _budget -= length;
        if (entry.tag == makerNoteTag) entry.place = offset;
        const ByteSpan value = _block.subspan(offset, length);
        entry.value.assign(value.begin(), value.end());
        directory.push_back(std::move(entry));
    }

    bool takeLink(std::uint16_t tag, std::size_t offset) {
        std::size_t* const link = tag == exifLink       ? &_exif
                                  : tag == placeLink    ? &_place
                                  : tag == exchangeLink ? &_exchange
                                                        : nullptr;
        if (link && *link == 0) *link = offset;
        return link != nullptr;
    }

    ByteSpan _block;
    // Entries may name the same bytes over and over.
    std::size_t _budget;
    TiffStructure _structure;
    std::size_t _exif = 0;
    std::size_t _place = 0;
    std::size_t _exchange = 0;
};

class TiffWriter {
public:
    explicit TiffWriter(const TiffStructure& structure) : _structure(structure) {
        for (const TiffDirectory* directory :
             {&structure.main, &structure.exif, &structure.place, &structure.exchange}) {
            for (const TiffEntry& entry : *directory) {
                if (entry.place >= headerSize && entry.value.size() > 4) _fixed = &entry;
            }
        }
        if (_fixed) _behind = _fixed->place + _fixed->value.size();
    }

    Bytes write() {
        const char order = _structure.isBigEndian ? 'M' : 'I';
        put(0, {static_cast<std::uint8_t>(order), static_cast<std::uint8_t>(order)});
        put(2, _structure.number(42, 2));
        const bool hasExchange = !_structure.exchange.empty();
        const bool hasExif = hasExchange || !_structure.exif.empty();
        TiffDirectory exif = _structure.exif;
        if (hasExchange) link(exif, exchangeLink, writeDirectory(_structure.exchange));
        TiffDirectory main = _structure.main;
        if (hasExif) link(main, exifLink, writeDirectory(exif));
        if (!_structure.place.empty()) link(main, placeLink, writeDirectory(_structure.place));
        put(4, _structure.number(static_cast<std::uint32_t>(writeDirectory(main)), 4));
        return std::move(_bytes);
    }

private:
    void link(TiffDirectory& directory, std::uint16_t tag, std::size_t offset) const {
        putEntry(directory, {tag, tiffType::longNumber,
                             _structure.number(static_cast<std::uint32_t>(offset), 4), 0});
    }

    // Returns where it is.
    std::size_t writeDirectory(const TiffDirectory& directory) {
        std::size_t at = reserve(2 + directory.size() * entrySize + 4);
        const std::size_t start = at;
        put(at, _structure.number(static_cast<std::uint32_t>(directory.size()), 2));
        at += 2;
        for (const TiffEntry& entry : directory) {
            writeEntry(at, entry);
            at += entrySize;
        }
        // No further directory.
        put(at, Bytes(4));
        return start;
    }

    void writeEntry(std::size_t at, const TiffEntry& entry) {
        const std::size_t count = entry.value.size() / sizeOfType(entry.type);
        put(at, _structure.number(entry.tag, 2));
        put(at + 2, _structure.number(entry.type, 2));
        put(at + 4, _structure.number(static_cast<std::uint32_t>(count), 4));
        if (entry.value.size() <= 4) {
            put(at + 8, entry.value);
            return;
        }
        const bool isFixed = _fixed && entry.tag == _fixed->tag && entry.place == _fixed->place;
        const std::size_t place = isFixed ? entry.place : reserve(entry.value.size());
        put(at + 8, _structure.number(static_cast<std::uint32_t>(place), 4));
        put(place, entry.value);
    }

    // Before the value that has its place if there is room, and behind it otherwise.
    std::size_t reserve(std::size_t size) {
        const bool fits = !_fixed || evened(_next) + size <= _fixed->place;
        std::size_t& next = fits ? _next : _behind;
        const std::size_t offset = evened(next);
        next = offset + size;
        return offset;
    }

    static std::size_t evened(std::size_t offset) { return offset + offset % 2; }

    void put(std::size_t offset, const Bytes& bytes) {
        if (_bytes.size() < offset + bytes.size()) _bytes.resize(offset + bytes.size());
        std::ranges::copy(bytes, _bytes.begin() + static_cast<std::ptrdiff_t>(offset));
    }

    const TiffStructure& _structure;
    const TiffEntry* _fixed = nullptr;
    std::size_t _next = headerSize;
    std::size_t _behind = 0;
    Bytes _bytes;
};

}  // namespace

Bytes TiffStructure::number(std::uint32_t value, std::size_t byteCount) const {
    Bytes bytes(byteCount);
    for (std::size_t i = 0; i < byteCount; ++i) {
        bytes[isBigEndian ? byteCount - 1 - i : i] = static_cast<std::uint8_t>(value);
        value >>= 8U;
    }
    return bytes;
}

TiffEntry TiffStructure::entry(std::uint16_t tag, std::uint32_t value) const {
    if (value > 0xFFFF) return {tag, tiffType::longNumber, number(value, 4), 0};
    return {tag, tiffType::shortNumber, number(value, 2), 0};
}

TiffEntry TiffStructure::text(std::uint16_t tag, const std::string& text) {
    TiffEntry entry{tag, tiffType::ascii, Bytes(text.begin(), text.end()), 0};
    entry.value.push_back(0);
    return entry;
}

std::optional<TiffStructure> readTiff(ByteSpan block) {
    return TiffReader(block).read();
}

Bytes writeTiff(const TiffStructure& structure) {
    return TiffWriter(structure).write();
}

const TiffEntry* findEntry(const TiffDirectory& directory, std::uint16_t tag) {
    const auto found = std::ranges::find(directory, tag, &TiffEntry::tag);
    return found == directory.end() ? nullptr : &*found;
}

void putEntry(TiffDirectory& directory, TiffEntry entry) {
    const auto found = std::ranges::lower_bound(directory, entry.tag, {}, &TiffEntry::tag);
    if (found != directory.end() && found->tag == entry.tag) {
        *found = std::move(entry);
    } else {
        directory.insert(found, std::move(entry));
    }
}

}  // namespace kalim::codec
