#include "kalimkit/codec/Decode.h"

#include <algorithm>
#include <array>
#include <new>
#include <string_view>

#include "kalimkit/codec/BytesAt.h"
#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/codec/ImportedFormat.h"
#include "kalimkit/codec/Saving.h"

namespace kalim::codec {

namespace {

using std::string_view_literals::operator""sv;

struct Signature {
    std::size_t offset;
    std::string_view bytes;
    std::string_view format;
};

// Pictures that people have and may try: the message names what they are.
constexpr std::array<Signature, 3> refusedFormats{{
    {4, "JXL \r\n\x87\n"sv, "JPEG XL"},
    {4, "jP  \r\n\x87\n"sv, "JPEG 2000"},
    {0, "8BPS\0\1"sv, "Photoshop"},
}};

DecodeResult failure(std::string message) {
    DecodeResult result;
    result.error = std::move(message);
    return result;
}

DecodeResult refuse(ByteSpan bytes) {
    if (bytes.empty()) return failure("the file is empty");
    for (const Signature& signature : refusedFormats) {
        if (hasAt(bytes, signature.offset, signature.bytes)) {
            return failure(std::string(signature.format) + " pictures are not supported");
        }
    }
    return failure(
        "not a picture that can be read (JPEG, PNG, WebP, GIF, BMP, PPM, TIFF, AVIF or HEIC)");
}

std::string sizeText(std::uint32_t width, std::uint32_t height) {
    return std::to_string(width) + " x " + std::to_string(height) + " pixels";
}

PixelPlace pixelPlace = nullptr;

gfx::Bitmap makeBitmap(int width, int height) {
    if (pixelPlace == nullptr) return gfx::Bitmap::unwritten(width, height);
    const std::size_t bytes =
        std::size_t{4} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    auto place = pixelPlace(bytes);
    if (!place) throw std::bad_alloc();
    return gfx::Bitmap::adopted(width, height, std::move(place));
}

DecodeResult decodeAnyFormat(ByteSpan bytes, const DecodeLimits& limits) {
    switch (fileFormat(bytes)) {
        case FileFormat::Jpeg:
            return decodeJpeg(bytes, limits);
        case FileFormat::Png:
            return decodePng(bytes, limits);
        case FileFormat::Webp:
            return decodeWebp(bytes, limits);
        case FileFormat::Other:
            break;
    }
    const bool isImported = importedFormat(bytes) != ImportedFormat::None;
    return isImported ? decodeImported(bytes, limits) : refuse(bytes);
}

}  // namespace

std::optional<std::string> sizeProblem(std::uint32_t width, std::uint32_t height,
                                       const DecodeLimits& limits) {
    if (width == 0 || height == 0) return "the picture has no pixels";
    const std::string size = sizeText(width, height);
    if (std::max<std::int64_t>(width, height) > limits.maxSide) {
        return size + " are more than the " + std::to_string(limits.maxSide) +
               " allowed for a side";
    }
    if (std::int64_t{width} * height > limits.maxPixels) {
        return size + " are more than the " + std::to_string(limits.maxPixels / 1'000'000) +
               " megapixels allowed";
    }
    return std::nullopt;
}

std::string memoryText(std::uint64_t bytes) {
    constexpr std::uint64_t mebibyte = std::uint64_t{1} << 20;
    constexpr std::uint64_t gibibyte = std::uint64_t{1} << 30;
    if (bytes < mebibyte) return std::to_string(bytes) + " bytes";
    if (bytes < gibibyte) return std::to_string(bytes / mebibyte) + " MiB";
    const std::uint64_t tenths = bytes * 10 / gibibyte;
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10) + " GiB";
}

std::optional<std::string> memoryProblem(std::uint64_t bytes, const DecodeLimits& limits) {
    if (bytes <= limits.maxMemory) return std::nullopt;
    return "the picture needs more than " + memoryText(limits.maxMemory);
}

void setPixelPlace(PixelPlace place) {
    pixelPlace = place;
}

bool allocatePixels(DecodeResult& result, std::uint32_t width, std::uint32_t height,
                    const DecodeLimits& limits) {
    result.error = sizeProblem(width, height, limits);
    if (!result.error) result.error = memoryProblem(std::uint64_t{4} * width * height, limits);
    if (result.error) return false;
    // A library that runs out of memory can only throw; a host is owed a message.
    try {
        result.bitmap = makeBitmap(static_cast<int>(width), static_cast<int>(height));
    } catch (const std::bad_alloc&) {
        result.error = sizeText(width, height) + " are more than the memory holds";
    }
    return !result.error;
}

DecodeResult decode(ByteSpan bytes, const std::string& name, const DecodeLimits& limits) {
    DecodeResult result = decodeAnyFormat(bytes, limits);
    if (result.error) return failure(name + ": " + *result.error);
    result.grid = pixelGrid(bytes);
    return result;
}

bool mayBePicture(ByteSpan start) {
    return fileFormat(start) != FileFormat::Other || importedFormat(start) != ImportedFormat::None;
}

std::optional<std::string> readPictureFile(const std::string& path, Bytes& bytes,
                                           const DecodeLimits& limits) {
    return readFileIf(path, bytes, limits.maxFileBytes, mayBePicture);
}

DecodeResult decodeFile(const std::string& path, const DecodeLimits& limits) {
    Bytes bytes;
    if (const auto error = readPictureFile(path, bytes, limits)) return failure(*error);
    return decode(bytes, path, limits);
}

}  // namespace kalim::codec
