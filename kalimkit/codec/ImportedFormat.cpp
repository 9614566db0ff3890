#include "kalimkit/codec/ImportedFormat.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "kalimkit/codec/BytesAt.h"

namespace kalim::codec {

namespace {

using std::string_view_literals::operator""sv;

struct Signature {
    std::size_t offset;
    std::string_view bytes;
    ImportedFormat format;
};

// Which of the two a file is that names only their family, its decoder finds out.
constexpr std::array<Signature, 13> signatures{{
    {0, "GIF87a"sv, ImportedFormat::Gif},
    {0, "GIF89a"sv, ImportedFormat::Gif},
    {0, "II*\0"sv, ImportedFormat::Tiff},
    {0, "MM\0*"sv, ImportedFormat::Tiff},
    {0, "II+\0"sv, ImportedFormat::Tiff},
    {0, "MM\0+"sv, ImportedFormat::Tiff},
    {4, "ftypavif"sv, ImportedFormat::Avif},
    {4, "ftypavis"sv, ImportedFormat::Avif},
    {4, "ftypheic"sv, ImportedFormat::Heic},
    {4, "ftypheix"sv, ImportedFormat::Heic},
    {4, "ftyphevc"sv, ImportedFormat::Heic},
    {4, "ftypmif1"sv, ImportedFormat::Heic},
    {4, "ftypmsf1"sv, ImportedFormat::Heic},
}};

// "P1" to "P6" and what parts it from a number.
bool isPnm(ByteSpan start) {
    constexpr std::string_view partings = " \t\r\n\v\f#"sv;
    return start.size() > 2 && start[0] == 'P' && start[1] >= '1' && start[1] <= '6' &&
           partings.find(static_cast<char>(start[2])) != std::string_view::npos;
}

// Behind the two letters, which alone may begin a text, stand four bytes of zero and, from the 14th
// byte on, how long the next header is.
bool isBmp(ByteSpan start) {
    constexpr std::array<std::uint8_t, 7> headerSizes{12, 40, 52, 56, 64, 108, 124};
    return hasAt(start, 0, "BM"sv) && hasAt(start, 6, "\0\0\0\0"sv) && start.size() > 15 &&
           std::ranges::find(headerSizes, start[14]) != headerSizes.end() && start[15] == 0;
}

}  // namespace

ImportedFormat importedFormat(ByteSpan start) {
    if (isPnm(start)) return ImportedFormat::Pnm;
    if (isBmp(start)) return ImportedFormat::Bmp;
    const auto found = std::ranges::find_if(
        signatures, [start](const Signature& one) { return hasAt(start, one.offset, one.bytes); });
    return found == signatures.end() ? ImportedFormat::None : found->format;
}

const char* mediaType(ImportedFormat format) {
    switch (format) {
        case ImportedFormat::Pnm:
            return "image/x-portable-anymap";
        case ImportedFormat::Bmp:
            return "image/bmp";
        case ImportedFormat::Gif:
            return "image/gif";
        case ImportedFormat::Tiff:
            return "image/tiff";
        case ImportedFormat::Avif:
            return "image/avif";
        case ImportedFormat::Heic:
            return "image/heic";
        case ImportedFormat::None:
            break;
    }
    return nullptr;
}

bool isOpaquePhoto(ByteSpan file) {
    constexpr std::size_t headerBytes = std::size_t{64} << 10U;
    const ImportedFormat format = importedFormat(file);
    if (format != ImportedFormat::Avif && format != ImportedFormat::Heic) return false;
    const ByteSpan header = file.first(std::min(file.size(), headerBytes));
    // How either family names the picture that holds the transparency of another one.
    for (const std::string_view alpha :
         {"urn:mpeg:mpegB:cicp:systems:auxiliary:alpha"sv, "urn:mpeg:hevc:2015:auxid:1"sv}) {
        if (!std::ranges::search(header, alpha, {}, {}, [](char letter) {
                 return static_cast<std::uint8_t>(letter);
             }).empty())
            return false;
    }
    return true;
}

}  // namespace kalim::codec
