#include "kalimkit/codec/FileFormat.h"

#include <string_view>

#include "kalimkit/codec/BytesAt.h"

namespace kalim::codec {

using std::string_view_literals::operator""sv;

FileFormat fileFormat(ByteSpan start) {
    if (hasAt(start, 0, "\xFF\xD8\xFF"sv)) return FileFormat::Jpeg;
    if (hasAt(start, 0, "\x89PNG\r\n\x1A\n"sv)) return FileFormat::Png;
    const bool isWebp = hasAt(start, 0, "RIFF"sv) && hasAt(start, 8, "WEBP"sv);
    return isWebp ? FileFormat::Webp : FileFormat::Other;
}

const char* mediaType(FileFormat format) {
    switch (format) {
        case FileFormat::Jpeg:
            return "image/jpeg";
        case FileFormat::Png:
            return "image/png";
        case FileFormat::Webp:
            return "image/webp";
        case FileFormat::Other:
            break;
    }
    return nullptr;
}

int bitDepth(ByteSpan file) {
    // Of the others none but these are read.
    constexpr int usual = 8;
    constexpr std::size_t depth = 24;
    constexpr std::size_t kind = 25;
    constexpr std::uint8_t palette = 3;
    const FileFormat format = fileFormat(file);
    if (format == FileFormat::Other) return 0;
    if (format != FileFormat::Png) return usual;
    if (file.size() <= kind) return 0;
    return file[kind] == palette ? usual : file[depth];
}

}  // namespace kalim::codec
