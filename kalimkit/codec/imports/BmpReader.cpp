#include <algorithm>
#include <array>
#include <bit>
#include <optional>
#include <vector>

#include "kalimkit/codec/imports/Import.h"

namespace kalim::codec {

namespace {

constexpr const char* endsTooEarly = "the BMP data end too early";
constexpr const char* damaged = "the BMP data are damaged";
constexpr std::size_t fileHeaderSize = 14;
// What stands behind the sizes of old headers, and which headers hold masks.
constexpr std::uint32_t coreHeader = 12;
constexpr std::uint32_t infoHeader = 40;
constexpr std::uint32_t alphaMaskHeader = 56;
constexpr std::uint32_t profileHeader = 124;
enum Compression : std::uint32_t { None = 0, Rle8 = 1, Rle4 = 2, Masks = 3, AlphaMasks = 6 };

using Pixel = std::array<std::uint8_t, 4>;

// A colour's bits in a pixel's number.
class Mask {
public:
    explicit Mask(std::uint32_t bits = 0) : _bits(bits), _shift(std::countr_zero(bits) % 32) {}
    bool isEmpty() const { return _bits == 0; }
    std::uint8_t of(std::uint32_t pixel) const {
        const std::uint64_t most = _bits >> static_cast<unsigned>(_shift);
        const std::uint64_t value = (pixel & _bits) >> static_cast<unsigned>(_shift);
        return static_cast<std::uint8_t>((value * 255 + most / 2) / most);
    }

private:
    std::uint32_t _bits;
    int _shift;
};

class BmpReader {
public:
    explicit BmpReader(ByteSpan bytes) : _bytes(bytes) {}

    // What is wrong with it; nothing where it is whole.
    std::optional<std::string> readHeader();
    std::optional<std::string> readPixels(gfx::Bitmap& bitmap);

    std::uint32_t width() const { return _width; }
    std::uint32_t height() const { return _height; }
    int bitDepth() const { return _bits == 16 ? 5 : 8; }
    bool hasAlpha() const { return !_masks[3].isEmpty(); }
    // Empty where the file has none.
    ByteSpan profile() const;

private:
    std::uint32_t number(std::size_t offset, std::size_t count) const {
        return littleEndian(_bytes, offset, count);
    }
    std::uint32_t header(std::size_t offset, std::size_t count = 4) const {
        return number(fileHeaderSize + offset, count);
    }
    bool isPacked() const { return _compression == Rle8 || _compression == Rle4; }
    bool isKnown() const;
    void readMasks();
    std::optional<std::string> readPalette();
    std::uint8_t* row(gfx::Bitmap& bitmap, std::uint32_t y) const;
    void readRow(ByteSpan row, std::uint8_t* bgra) const;
    std::optional<std::string> unpack(gfx::Bitmap& bitmap) const;

    ByteSpan _bytes;
    std::uint32_t _headerSize = 0;
    std::uint32_t _width = 0;
    std::uint32_t _height = 0;
    bool _isTopDown = false;
    std::uint32_t _bits = 0;
    std::uint32_t _compression = None;
    // Red, green, blue, alpha.
    std::array<Mask, 4> _masks;
    std::vector<Pixel> _palette;
    std::size_t _start = 0;
};

// ---- the header

std::optional<std::string> BmpReader::readHeader() {
    _headerSize = header(0);
    if (_bytes.size() < fileHeaderSize + std::max(_headerSize, coreHeader)) return endsTooEarly;
    const bool isCore = _headerSize == coreHeader;
    _width = header(4, isCore ? 2 : 4);
    _height = isCore ? header(6, 2) : header(8);
    _isTopDown = !isCore && (_height & 0x80000000U) != 0;
    if (_isTopDown) _height = 0U - _height;
    _bits = header(isCore ? 10 : 14, 2);
    _compression = isCore ? std::uint32_t{None} : header(16);
    _start = number(10, 4);
    if (!isKnown()) return "BMP pictures of this kind are not supported";
    readMasks();
    return readPalette();
}

bool BmpReader::isKnown() const {
    switch (_compression) {
        case None:
            return _bits == 1 || _bits == 4 || _bits == 8 || _bits == 16 || _bits == 24 ||
                   _bits == 32;
        case Rle8:
            return _bits == 8 && !_isTopDown;
        case Rle4:
            return _bits == 4 && !_isTopDown;
        case Masks:
        case AlphaMasks:
            return _bits == 16 || _bits == 32;
        default:
            return false;
    }
}

// The masks stand in the header, or behind one that is too short for them.
void BmpReader::readMasks() {
    if (_compression == Masks || _compression == AlphaMasks) {
        for (std::size_t i = 0; i < 3; ++i)
            _masks[i] = Mask(header(infoHeader + 4 * i));
        const bool hasFourth = _compression == AlphaMasks || _headerSize >= alphaMaskHeader;
        if (hasFourth) _masks[3] = Mask(header(infoHeader + 12));
    } else if (_bits == 16) {
        _masks = {Mask(0x7C00), Mask(0x3E0), Mask(0x1F), Mask()};
    } else if (_bits == 32) {
        _masks = {Mask(0xFF0000), Mask(0xFF00), Mask(0xFF), Mask()};
    }
}

std::optional<std::string> BmpReader::readPalette() {
    if (_bits > 8) {
        const bool lacksMask =
            _bits != 24 && std::any_of(_masks.begin(), _masks.begin() + 3,
                                       [](const Mask& mask) { return mask.isEmpty(); });
        return lacksMask ? std::optional<std::string>(damaged) : std::nullopt;
    }
    const bool isCore = _headerSize == coreHeader;
    const std::uint32_t most = 1U << _bits;
    const std::uint32_t used = isCore ? 0 : header(32);
    const std::uint32_t count = used == 0 ? most : std::min(used, most);
    const std::size_t size = isCore ? 3 : 4;
    const std::size_t begin = fileHeaderSize + _headerSize;
    if (_bytes.size() < begin + size * count) return endsTooEarly;
    _palette.assign(most, Pixel{0, 0, 0, 255});
    for (std::size_t i = 0; i < count; ++i)
        std::copy_n(_bytes.begin() + static_cast<std::ptrdiff_t>(begin + size * i), 3,
                    _palette[i].begin());
    return std::nullopt;
}

ByteSpan BmpReader::profile() const {
    // "MBED", the lowest byte first.
    constexpr std::uint32_t embedded = 0x4D424544;
    if (_headerSize < profileHeader || header(56) != embedded) return {};
    const std::uint64_t begin = fileHeaderSize + std::uint64_t{header(112)};
    const std::uint64_t size = header(116);
    if (begin > _bytes.size() || size > _bytes.size() - begin) return {};
    return _bytes.subspan(begin, size);
}

// ---- pixels

std::uint8_t* BmpReader::row(gfx::Bitmap& bitmap, std::uint32_t y) const {
    return bitmap.row(static_cast<int>(_isTopDown ? y : _height - 1 - y));
}

void BmpReader::readRow(ByteSpan row, std::uint8_t* bgra) const {
    for (std::uint32_t x = 0; x < _width; ++x, bgra += 4) {
        if (_bits <= 8) {
            const std::uint32_t inByte = x * _bits % 8;
            const std::uint32_t index =
                row[std::size_t{x} * _bits / 8] >> (8 - _bits - inByte) & ((1U << _bits) - 1);
            std::ranges::copy(_palette[index], bgra);
        } else if (_bits == 24) {
            std::copy_n(row.begin() + std::ptrdiff_t{3} * x, 3, bgra);
            bgra[3] = 255;
        } else {
            const std::uint32_t pixel = littleEndian(row, std::size_t{x} * _bits / 8, _bits / 8);
            for (std::size_t i = 0; i < 3; ++i)
                bgra[2 - i] = _masks[i].of(pixel);
            bgra[3] = hasAlpha() ? _masks[3].of(pixel) : 255;
        }
    }
}

std::optional<std::string> BmpReader::readPixels(gfx::Bitmap& bitmap) {
    if (isPacked()) return unpack(bitmap);
    const std::uint64_t rowBytes = (std::uint64_t{_width} * _bits + 31) / 32 * 4;
    if (_start > _bytes.size() || rowBytes * _height > _bytes.size() - _start) return endsTooEarly;
    for (std::uint32_t y = 0; y < _height; ++y)
        readRow(_bytes.subspan(_start + rowBytes * y, rowBytes), row(bitmap, y));
    return std::nullopt;
}

// Runs of one colour, or of two that take turns; what is passed over has the first colour.
class BmpRuns {
public:
    BmpRuns(ByteSpan data, bool isHalf) : _data(data), _isHalf(isHalf) {}

    // Calls put(x, y, index) for each pixel, which may lie beyond the picture. What is wrong, or
    // nothing.
    template <typename Put>
    std::optional<std::string> read(std::uint32_t height, const Put& put) {
        while (_y < height) {
            if (_data.size() < 2) return endsTooEarly;
            const std::uint8_t count = _data[0];
            const std::uint8_t value = _data[1];
            _data = _data.subspan(2);
            if (count > 0) {
                for (std::uint32_t i = 0; i < count; ++i)
                    put(_x++, _y, _isHalf ? nibble(value, i) : value);
            } else if (value == 1) {
                return std::nullopt;
            } else if (!escape(value, put)) {
                return endsTooEarly;
            }
        }
        return std::nullopt;
    }

private:
    static std::uint8_t nibble(std::uint8_t byte, std::uint32_t index) {
        return index % 2 == 0 ? byte >> 4U : byte & 15U;
    }

    // The end of a row, a step aside, or pixels that are no run.
    template <typename Put>
    bool escape(std::uint8_t value, const Put& put) {
        if (value == 0) {
            _x = 0;
            ++_y;
            return true;
        }
        const std::size_t bytes = value == 2 ? 2 : _isHalf ? (value + 1U) / 2 : value;
        const std::size_t whole = (bytes + 1) / 2 * 2;
        if (_data.size() < whole) return false;
        if (value == 2) {
            _x += _data[0];
            _y += _data[1];
        } else {
            for (std::uint32_t i = 0; i < value; ++i)
                put(_x++, _y, _isHalf ? nibble(_data[i / 2], i) : _data[i]);
        }
        _data = _data.subspan(whole);
        return true;
    }

    ByteSpan _data;
    bool _isHalf;
    std::uint32_t _x = 0;
    std::uint32_t _y = 0;
};

std::optional<std::string> BmpReader::unpack(gfx::Bitmap& bitmap) const {
    if (_start > _bytes.size()) return endsTooEarly;
    for (std::uint32_t y = 0; y < _height; ++y) {
        for (std::uint32_t x = 0; x < _width; ++x)
            std::ranges::copy(_palette[0], bitmap.row(static_cast<int>(y)) + std::size_t{4} * x);
    }
    return BmpRuns(_bytes.subspan(_start), _compression == Rle4)
        .read(_height, [&](std::uint32_t x, std::uint32_t y, std::uint8_t index) {
            if (x < _width && y < _height)
                std::ranges::copy(_palette[index], row(bitmap, y) + std::size_t{4} * x);
        });
}

}  // namespace

DecodeResult readBmp(ByteSpan bytes, const DecodeLimits& limits) {
    BmpReader reader(bytes);
    DecodeResult result;
    result.error = reader.readHeader();
    if (!result.error) result.error = sizeProblem(reader.width(), reader.height(), limits);
    if (result.error || !allocatePixels(result, reader.width(), reader.height(), limits))
        return result;
    result.error = reader.readPixels(result.bitmap);
    result.imported = {reader.bitDepth(), {}};
    if (!result.error) finishImport(result, reader.profile(), reader.hasAlpha());
    return result;
}

}  // namespace kalim::codec
