#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <optional>

#include "kalimkit/codec/AlphaRows.h"
#include "kalimkit/codec/ExifOrientation.h"
#include "kalimkit/codec/imports/Import.h"
#include "kalimkit/codec/imports/Library.h"

namespace kalim::codec {

namespace {

// The functions of the library that are used.
struct TiffLibrary {
    static const TiffLibrary& shared() {
        static const TiffLibrary library;
        return library;
    }

    TiffLibrary() {
        library.find("TIFFOpenOptionsAlloc", openOptions)
            .find("TIFFOpenOptionsFree", freeOptions)
            .find("TIFFOpenOptionsSetMaxSingleMemAlloc", setMost)
            .find("TIFFOpenOptionsSetErrorHandlerExtR", setErrorHandler)
            .find("TIFFOpenOptionsSetWarningHandlerExtR", setWarningHandler)
            .find("TIFFClientOpenExt", open)
            .find("TIFFClose", close)
            .find("TIFFGetField", getField)
            .find("TIFFRGBAImageBegin", begin)
            .find("TIFFRGBAImageGet", get)
            .find("TIFFRGBAImageEnd", end);
    }

    Library library{KALIM_TIFF_LIBRARY};
    decltype(&TIFFOpenOptionsAlloc) openOptions = nullptr;
    decltype(&TIFFOpenOptionsFree) freeOptions = nullptr;
    decltype(&TIFFOpenOptionsSetMaxSingleMemAlloc) setMost = nullptr;
    decltype(&TIFFOpenOptionsSetErrorHandlerExtR) setErrorHandler = nullptr;
    decltype(&TIFFOpenOptionsSetWarningHandlerExtR) setWarningHandler = nullptr;
    decltype(&TIFFClientOpenExt) open = nullptr;
    decltype(&TIFFClose) close = nullptr;
    decltype(&TIFFGetField) getField = nullptr;
    decltype(&TIFFRGBAImageBegin) begin = nullptr;
    decltype(&TIFFRGBAImageGet) get = nullptr;
    decltype(&TIFFRGBAImageEnd) end = nullptr;
};

// A file in memory, as the library reads it, and what it says of it first.
struct TiffInput {
    ByteSpan bytes;
    std::uint64_t place = 0;
    std::array<char, 160> message{};

    static TiffInput& of(thandle_t handle) { return *static_cast<TiffInput*>(handle); }
    static tmsize_t read(thandle_t handle, void* target, tmsize_t count) {
        TiffInput& input = of(handle);
        if (input.place >= input.bytes.size() || count < 0) return 0;
        const std::uint64_t given =
            std::min<std::uint64_t>(input.bytes.size() - input.place, std::uint64_t(count));
        std::memcpy(target, input.bytes.data() + input.place, given);
        input.place += given;
        return static_cast<tmsize_t>(given);
    }
    static tmsize_t write(thandle_t, void*, tmsize_t) { return 0; }
    static toff_t seek(thandle_t handle, toff_t offset, int from) {
        TiffInput& input = of(handle);
        input.place = offset + (from == SEEK_CUR   ? input.place
                                : from == SEEK_END ? input.bytes.size()
                                                   : 0);
        return input.place;
    }
    static int close(thandle_t) { return 0; }
    static toff_t size(thandle_t handle) { return of(handle).bytes.size(); }

    static int onError(TIFF*, void* data, const char*, const char* format, va_list values) {
        TiffInput& input = of(data);
        if (input.message[0] == '\0')
            std::vsnprintf(input.message.data(), input.message.size(), format, values);
        return 1;
    }
    static int onWarning(TIFF*, void*, const char*, const char*, va_list) { return 1; }
};

// The first page of a file.
class TiffReader {
public:
    TiffReader(ByteSpan bytes, const DecodeLimits& limits) : _input{bytes} {
        TIFFOpenOptions* const options = _library.openOptions();
        if (!options) return;
        _library.setMost(options, static_cast<tmsize_t>(limits.maxMemory));
        _library.setErrorHandler(options, TiffInput::onError, &_input);
        _library.setWarningHandler(options, TiffInput::onWarning, nullptr);
        // "m": the file is not mapped, for it is in memory.
        _tiff = _library.open("", "rm", &_input, TiffInput::read, TiffInput::write, TiffInput::seek,
                              TiffInput::close, TiffInput::size, nullptr, nullptr, options);
        _library.freeOptions(options);
    }
    ~TiffReader() {
        if (_tiff) _library.close(_tiff);
    }
    TiffReader(const TiffReader&) = delete;
    TiffReader& operator=(const TiffReader&) = delete;

    bool isOpen() const { return _tiff != nullptr; }
    std::string problem() const {
        const std::string reason = _input.message.data();
        return "the TIFF data are damaged" + (reason.empty() ? reason : " (" + reason + ")");
    }
    std::uint32_t width() const { return number<std::uint32_t>(TIFFTAG_IMAGEWIDTH, 0); }
    std::uint32_t height() const { return number<std::uint32_t>(TIFFTAG_IMAGELENGTH, 0); }
    // That of a palette's colours where it has one.
    int bitDepth() const {
        const auto kind = number<std::uint16_t>(TIFFTAG_PHOTOMETRIC, 0);
        return kind == PHOTOMETRIC_PALETTE ? 8 : number<std::uint16_t>(TIFFTAG_BITSPERSAMPLE, 1);
    }
    gfx::ImageOrientation orientation() const {
        return orientationOfExif(number<std::uint16_t>(TIFFTAG_ORIENTATION, 1));
    }
    ByteSpan profile() const {
        std::uint32_t size = 0;
        const std::uint8_t* data = nullptr;
        const bool isThere = _library.getField(_tiff, TIFFTAG_ICCPROFILE, &size, &data) == 1;
        return isThere ? ByteSpan(data, size) : ByteSpan();
    }

    // Straight BGRA.
    bool readPixels(gfx::Bitmap& bitmap, bool& hasAlpha);

private:
    template <typename Number>
    Number number(std::uint32_t tag, Number otherwise) const {
        Number value = 0;
        return _library.getField(_tiff, tag, &value) == 1 ? value : otherwise;
    }

    const TiffLibrary& _library = TiffLibrary::shared();
    TiffInput _input;
    TIFF* _tiff = nullptr;
};

bool TiffReader::readPixels(gfx::Bitmap& bitmap, bool& hasAlpha) {
    constexpr int stopsAtDamage = 1;
    // Of 1024 bytes by the library's contract.
    std::array<char, 1024> reason{};
    TIFFRGBAImage image{};
    if (_library.begin(&image, _tiff, stopsAtDamage, reason.data()) == 0) {
        // The end is cut off where it is longer; the last byte stays a zero.
        if (_input.message[0] == '\0')
            std::strncpy(_input.message.data(), reason.data(), _input.message.size() - 1);
        return false;
    }
    hasAlpha = image.alpha != 0;
    // The rows stay as they are stored: the orientation is told.
    image.orientation = ORIENTATION_TOPLEFT;
    image.req_orientation = ORIENTATION_TOPLEFT;
    const bool isRead = _library.get(&image, reinterpret_cast<std::uint32_t*>(bitmap.data()),
                                     static_cast<std::uint32_t>(bitmap.width()),
                                     static_cast<std::uint32_t>(bitmap.height())) == 1 &&
                        _input.message[0] == '\0';
    _library.end(&image);
    // The library's order is red, green, blue, premultiplied alpha.
    const auto pixelCount = static_cast<std::size_t>(bitmap.width());
    for (int y = 0; isRead && y < bitmap.height(); ++y) {
        std::uint8_t* const row = bitmap.row(y);
        for (std::size_t x = 0; x < pixelCount; ++x)
            std::swap(row[4 * x], row[4 * x + 2]);
        if (hasAlpha) straightenRow(row, row, pixelCount);
    }
    return isRead;
}

}  // namespace

std::optional<std::string> loadTiff() {
    if (TiffLibrary::shared().library.isWhole()) return std::nullopt;
    return Library::advice("TIFF", KALIM_TIFF_LIBRARY);
}

DecodeResult readTiff(ByteSpan bytes, const DecodeLimits& limits) {
    TiffReader reader(bytes, limits);
    if (!reader.isOpen()) return importFailure(reader.problem());
    DecodeResult result;
    result.error = sizeProblem(reader.width(), reader.height(), limits);
    if (result.error || !allocatePixels(result, reader.width(), reader.height(), limits))
        return result;
    bool hasAlpha = false;
    if (!reader.readPixels(result.bitmap, hasAlpha)) return importFailure(reader.problem());
    result.orientation = reader.orientation();
    result.imported = {reader.bitDepth(), {}};
    finishImport(result, reader.profile(), hasAlpha);
    return result;
}

}  // namespace kalim::codec
