#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/codec/Bytes.h"

namespace kalim::codec {

namespace tiffType {
constexpr std::uint16_t byte = 1;
constexpr std::uint16_t ascii = 2;
constexpr std::uint16_t shortNumber = 3;
constexpr std::uint16_t longNumber = 4;
constexpr std::uint16_t rational = 5;
constexpr std::uint16_t signedByte = 6;
constexpr std::uint16_t undefined = 7;
constexpr std::uint16_t signedRational = 10;
constexpr std::uint16_t directory = 13;
constexpr std::uint16_t utf8 = 129;
}  // namespace tiffType

// What the camera's maker notes, in a form of his own.
constexpr std::uint16_t makerNoteTag = 0x927C;

// A field of a directory.
struct TiffEntry {
    std::uint16_t tag = 0;
    std::uint16_t type = tiffType::undefined;
    // As long as whole numbers of its type, in the structure's byte order.
    Bytes value;
    // Where a maker's note began in the structure that it was read from. It goes there again,
    // because most count their own places from the structure's start; 0 for any other field.
    std::size_t place = 0;
};

using TiffDirectory = std::vector<TiffEntry>;

// What Exif keeps its fields in. The links between the directories are made in writing; the
// directory of a thumbnail and any that Exif does not know are not read.
struct TiffStructure {
    bool isBigEndian = false;
    TiffDirectory main;
    TiffDirectory exif;
    TiffDirectory place;
    TiffDirectory exchange;

    bool isEmpty() const {
        return main.empty() && exif.empty() && place.empty() && exchange.empty();
    }
    // A number of 2 or 4 bytes.
    Bytes number(std::uint32_t value, std::size_t byteCount) const;
    // As a short number where it is one, and as a long one otherwise.
    TiffEntry entry(std::uint16_t tag, std::uint32_t value) const;
    static TiffEntry text(std::uint16_t tag, const std::string& text);
};

// Takes over what is whole, every tag of a directory once, and altogether no more bytes than the
// block has. Nothing where the block is no such structure.
std::optional<TiffStructure> readTiff(ByteSpan block);

// Bytes that no entry holds are zero.
Bytes writeTiff(const TiffStructure& structure);

const TiffEntry* findEntry(const TiffDirectory& directory, std::uint16_t tag);
void putEntry(TiffDirectory& directory, TiffEntry entry);

}  // namespace kalim::codec
