#include <algorithm>
#include <optional>
#include <string_view>

#include "kalimkit/codec/imports/Import.h"

namespace kalim::codec {

namespace {

constexpr const char* endsTooEarly = "the PNM data end too early";
constexpr std::uint8_t opaque = 255;

// The six kinds, P1 to P6: black and white, grey, and colours, in letters and in bytes.
class PnmReader {
public:
    explicit PnmReader(ByteSpan bytes) : _kind(bytes[1] - '0'), _rest(bytes.subspan(2)) {}

    // What is wrong with it; nothing where it is whole.
    std::optional<std::string> readHeader();
    bool readPixels(gfx::Bitmap& bitmap);

    std::uint32_t width() const { return _width; }
    std::uint32_t height() const { return _height; }
    int bitDepth() const { return _most > 255 ? 16 : isBits() ? 1 : 8; }
    // In bytes or letters; a picture that says that it is larger than its file cannot be whole.
    bool holdsEnoughData() const;

private:
    bool isBits() const { return _kind == 1 || _kind == 4; }
    bool isText() const { return _kind <= 3; }
    std::uint32_t sampleCount() const { return _kind == 3 || _kind == 6 ? 3 : 1; }
    std::size_t sampleBytes() const { return _most > 255 ? 2 : 1; }
    void skipBlanks();
    std::optional<std::uint32_t> number();
    std::optional<std::uint8_t> bit();
    std::optional<std::uint8_t> sample();
    bool readBitRow(std::uint8_t* row);
    bool readRow(std::uint8_t* row);

    int _kind;
    ByteSpan _rest;
    std::uint32_t _width = 0;
    std::uint32_t _height = 0;
    std::uint32_t _most = 1;
};

bool isBlank(std::uint8_t byte) {
    return byte == ' ' || (byte >= '\t' && byte <= '\r');
}

void PnmReader::skipBlanks() {
    while (!_rest.empty()) {
        if (_rest[0] == '#') {
            const auto end = std::ranges::find_if(
                _rest, [](std::uint8_t byte) { return byte == '\n' || byte == '\r'; });
            _rest = {end, _rest.end()};
        } else if (isBlank(_rest[0])) {
            _rest = _rest.subspan(1);
        } else {
            return;
        }
    }
}

std::optional<std::uint32_t> PnmReader::number() {
    constexpr std::uint32_t most = 1U << 24U;
    skipBlanks();
    std::uint32_t value = 0;
    std::size_t digits = 0;
    for (; digits < _rest.size() && _rest[digits] >= '0' && _rest[digits] <= '9'; ++digits)
        value = std::min(most, value * 10 + (_rest[digits] - '0'));
    _rest = _rest.subspan(digits);
    return digits == 0 ? std::nullopt : std::optional(value);
}

std::optional<std::string> PnmReader::readHeader() {
    constexpr std::uint32_t mostOfAll = 65535;
    const auto width = number();
    const auto height = number();
    const auto most = isBits() ? std::optional(1U) : number();
    if (!width || !height || !most)
        return _rest.empty() ? endsTooEarly : "the PNM data are damaged";
    if (*most == 0 || *most > mostOfAll) return "the PNM data are damaged";
    _width = *width;
    _height = *height;
    _most = *most;
    // One blank parts the header from bytes.
    if (!isText() && !_rest.empty()) _rest = _rest.subspan(1);
    return std::nullopt;
}

bool PnmReader::holdsEnoughData() const {
    const std::uint64_t samples = std::uint64_t{_width} * _height * sampleCount();
    if (_kind == 4) return (std::uint64_t{_width} + 7) / 8 * _height <= _rest.size();
    return samples * (isText() ? 1 : sampleBytes()) <= _rest.size();
}

// Of a text; 1 is black.
std::optional<std::uint8_t> PnmReader::bit() {
    skipBlanks();
    if (_rest.empty() || (_rest[0] != '0' && _rest[0] != '1')) return std::nullopt;
    const std::uint8_t value = _rest[0] == '1' ? 0 : 255;
    _rest = _rest.subspan(1);
    return value;
}

std::optional<std::uint8_t> PnmReader::sample() {
    if (_kind == 1) return bit();
    std::optional<std::uint32_t> value;
    if (isText()) {
        value = number();
    } else if (_rest.size() >= sampleBytes()) {
        value = _most > 255 ? std::uint32_t{_rest[0]} << 8U | _rest[1] : _rest[0];
        _rest = _rest.subspan(sampleBytes());
    }
    if (!value) return std::nullopt;
    return static_cast<std::uint8_t>((std::min(*value, _most) * 255 + _most / 2) / _most);
}

bool PnmReader::readBitRow(std::uint8_t* row) {
    const std::size_t size = (std::size_t{_width} + 7) / 8;
    if (_rest.size() < size) return false;
    for (std::uint32_t x = 0; x < _width; ++x) {
        const bool isBlack = (_rest[x / 8] >> (7 - x % 8) & 1) != 0;
        std::fill_n(row + std::size_t{4} * x, 3, isBlack ? 0 : 255);
        row[std::size_t{4} * x + 3] = opaque;
    }
    _rest = _rest.subspan(size);
    return true;
}

bool PnmReader::readRow(std::uint8_t* row) {
    if (_kind == 4) return readBitRow(row);
    for (std::uint32_t x = 0; x < _width; ++x, row += 4) {
        for (std::uint32_t i = 0; i < sampleCount(); ++i) {
            const auto value = sample();
            if (!value) return false;
            row[2 - i] = *value;
        }
        if (sampleCount() == 1) row[0] = row[1] = row[2];
        row[3] = opaque;
    }
    return true;
}

bool PnmReader::readPixels(gfx::Bitmap& bitmap) {
    for (int y = 0; y < bitmap.height(); ++y)
        if (!readRow(bitmap.row(y))) return false;
    return true;
}

}  // namespace

DecodeResult readPnm(ByteSpan bytes, const DecodeLimits& limits) {
    PnmReader reader(bytes);
    DecodeResult result;
    result.error = reader.readHeader();
    if (!result.error) result.error = sizeProblem(reader.width(), reader.height(), limits);
    if (!result.error && !reader.holdsEnoughData()) result.error = endsTooEarly;
    if (result.error || !allocatePixels(result, reader.width(), reader.height(), limits))
        return result;
    if (!reader.readPixels(result.bitmap)) result.error = endsTooEarly;
    result.imported = {reader.bitDepth(), {}};
    return result;
}

}  // namespace kalim::codec
