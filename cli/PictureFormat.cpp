#include "cli/PictureFormat.h"

#include <algorithm>

#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/ImportedFormat.h"

namespace kalim::cli {

std::optional<PictureFormat> pictureFormat(std::string_view name) {
    std::string lower(name);
    std::ranges::transform(lower, lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    if (lower == "png") return PictureFormat::Png;
    if (lower == "jpg" || lower == "jpeg") return PictureFormat::Jpeg;
    if (lower == "webp") return PictureFormat::Webp;
    return std::nullopt;
}

std::optional<PictureFormat> pictureFormatOfPath(const std::string& path) {
    const std::string name = path.substr(path.find_last_of('/') + 1);
    const std::size_t dot = name.find_last_of('.');
    if (dot == std::string::npos) return std::nullopt;
    return pictureFormat(std::string_view(name).substr(dot + 1));
}

std::optional<PictureFormat> pictureFormatOfBytes(codec::ByteSpan bytes) {
    switch (codec::fileFormat(bytes)) {
        case codec::FileFormat::Jpeg:
            return PictureFormat::Jpeg;
        case codec::FileFormat::Png:
            return PictureFormat::Png;
        case codec::FileFormat::Webp:
            return PictureFormat::Webp;
        case codec::FileFormat::Other:
            break;
    }
    if (codec::importedFormat(bytes) == codec::ImportedFormat::None) return std::nullopt;
    return codec::isOpaquePhoto(bytes) ? PictureFormat::Jpeg : PictureFormat::Png;
}

std::string endingOf(PictureFormat format) {
    if (format == PictureFormat::Png) return ".png";
    return format == PictureFormat::Jpeg ? ".jpg" : ".webp";
}

}  // namespace kalim::cli
