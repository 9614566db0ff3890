#include "kalimkit/codec/imports/Import.h"

#include <utility>

#include "kalimkit/codec/AlphaRows.h"
#include "kalimkit/codec/ColorConversion.h"
#include "kalimkit/codec/ColorProfile.h"
#include "kalimkit/codec/ImportedFormat.h"

namespace kalim::codec {

std::optional<std::string> prepareImport(ByteSpan start) {
    switch (importedFormat(start)) {
        case ImportedFormat::Tiff:
            return loadTiff();
        case ImportedFormat::Avif:
            return loadAvif();
        case ImportedFormat::Heic:
            return loadHeic();
        default:
            return std::nullopt;
    }
}

DecodeResult decodeImported(ByteSpan bytes, const DecodeLimits& limits) {
    if (auto problem = prepareImport(bytes)) return importFailure(std::move(*problem));
    switch (importedFormat(bytes)) {
        case ImportedFormat::Pnm:
            return readPnm(bytes, limits);
        case ImportedFormat::Bmp:
            return readBmp(bytes, limits);
        case ImportedFormat::Gif:
            return readGif(bytes, limits);
        case ImportedFormat::Tiff:
            return readTiff(bytes, limits);
        case ImportedFormat::Avif:
            return readAvif(bytes, limits);
        case ImportedFormat::Heic:
            return readHeic(bytes, limits);
        case ImportedFormat::None:
            break;
    }
    return importFailure("not a picture that is imported");
}

DecodeResult importFailure(std::string message) {
    DecodeResult result;
    result.error = std::move(message);
    return result;
}

std::uint32_t littleEndian(ByteSpan bytes, std::size_t offset, std::size_t count) {
    if (offset > bytes.size() || bytes.size() - offset < count) return 0;
    std::uint32_t value = 0;
    for (std::size_t i = count; i-- > 0;)
        value = value << 8U | bytes[offset + i];
    return value;
}

void finishImport(DecodeResult& result, ByteSpan profile, bool hasAlpha) {
    if (result.imported) result.imported->profileName = profileName(profile).value_or("");
    const auto conversion = ColorConversion::make(profile, ColorConversion::Samples::Bgra);
    if (!conversion && !hasAlpha) return;
    const auto pixelCount = static_cast<std::size_t>(result.bitmap.width());
    for (int y = 0; y < result.bitmap.height(); ++y) {
        std::uint8_t* const row = result.bitmap.row(y);
        if (conversion) conversion->convertRow(row, row, pixelCount);
        if (hasAlpha) premultiplyRow(row, pixelCount);
    }
}

}  // namespace kalim::codec
