#include "kalimkit/codec/ExifOrientation.h"

#include <algorithm>
#include <array>
#include <optional>

namespace kalim::codec {

namespace {

using gfx::ImageOrientation;

// The block is a TIFF file: a header, then directories of 12-byte entries. Orientation stands in
// the first directory only, so no link from one directory to the next is ever followed.
constexpr std::size_t headerSize = 8;
constexpr std::size_t entrySize = 12;
constexpr std::uint32_t orientationTag = 0x0112;
constexpr std::uint32_t shortType = 3;

// In the order of the tag's numbers, from 1 on.
constexpr std::array orientations{
    ImageOrientation::Up,
    ImageOrientation::UpMirrored,
    ImageOrientation::Down,
    ImageOrientation::DownMirrored,
    ImageOrientation::LeftMirrored,
    ImageOrientation::Right,
    ImageOrientation::RightMirrored,
    ImageOrientation::Left,
};

class TiffReader {
public:
    TiffReader(ByteSpan bytes, bool bigEndian) : _bytes(bytes), _bigEndian(bigEndian) {}

    std::optional<std::uint32_t> number(std::size_t offset, std::size_t byteCount) const {
        if (offset > _bytes.size() || _bytes.size() - offset < byteCount) return std::nullopt;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < byteCount; ++i) {
            const std::size_t at = _bigEndian ? i : byteCount - 1 - i;
            value = value << 8 | _bytes[offset + at];
        }
        return value;
    }

private:
    ByteSpan _bytes;
    bool _bigEndian;
};

std::optional<std::uint32_t> orientationValue(const TiffReader& tiff) {
    if (tiff.number(2, 2) != 42U) return std::nullopt;
    const std::optional<std::uint32_t> directory = tiff.number(4, 4);
    if (!directory || *directory < headerSize) return std::nullopt;
    const std::optional<std::uint32_t> entryCount = tiff.number(*directory, 2);
    if (!entryCount) return std::nullopt;
    for (std::size_t i = 0; i < *entryCount; ++i) {
        const std::size_t entry = std::size_t{*directory} + 2 + i * entrySize;
        const std::optional<std::uint32_t> tag = tiff.number(entry, 2);
        if (!tag) return std::nullopt;
        if (*tag != orientationTag) continue;
        const bool isOneShort =
            tiff.number(entry + 2, 2) == shortType && tiff.number(entry + 4, 4) == 1U;
        return isOneShort ? tiff.number(entry + 8, 2) : std::nullopt;
    }
    return std::nullopt;
}

}  // namespace

ImageOrientation exifOrientation(ByteSpan exif) {
    if (exif.size() < headerSize || exif[0] != exif[1]) return ImageOrientation::Up;
    if (exif[0] != 'I' && exif[0] != 'M') return ImageOrientation::Up;
    const std::uint32_t value = orientationValue(TiffReader(exif, exif[0] == 'M')).value_or(1);
    return orientationOfExif(value <= orientations.size() ? static_cast<int>(value) : 1);
}

ImageOrientation orientationOfExif(int number) {
    const bool isKnown = number >= 1 && number <= static_cast<int>(orientations.size());
    return isKnown ? orientations[static_cast<std::size_t>(number) - 1] : ImageOrientation::Up;
}

int exifOrientationNumber(ImageOrientation orientation) {
    return static_cast<int>(std::ranges::find(orientations, orientation) - orientations.begin()) +
           1;
}

}  // namespace kalim::codec
