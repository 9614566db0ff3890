#include "cli/PictureFiles.h"

#include <algorithm>
#include <utility>

#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Encode.h"
#include "kalimkit/codec/Files.h"

namespace kalim::cli {

namespace {

constexpr int lossyQuality = 90;

// With the dot, in small letters; empty for a name without one.
std::string extensionOf(const std::string& path) {
    const std::string name = path.substr(path.find_last_of('/') + 1);
    const std::size_t dot = name.find_last_of('.');
    if (dot == std::string::npos) return {};
    std::string extension = name.substr(dot);
    std::ranges::transform(extension, extension.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return extension;
}

}  // namespace

ScenarioFiles::LoadedPicture PictureFiles::loadPicture(const std::string& path) {
    codec::DecodeResult decoded = codec::decodeFile(path);
    if (decoded.error) return {nullptr, *decoded.error};
    // A file's pixels are points until the canvas fits them into its view.
    gfx::ImageRef image = _device.makeImage(std::move(decoded.bitmap), 1, decoded.orientation);
    if (!image) return {nullptr, path + ": there is no room for a picture of this size"};
    return {image, {}};
}

std::optional<std::string> PictureFiles::savePicture(const std::string& path,
                                                     const gfx::ImageRef& image) {
    const std::string extension = extensionOf(path);
    const bool isJpeg = extension == ".jpg" || extension == ".jpeg";
    const bool isWebp = extension == ".webp";
    if (!isJpeg && !isWebp && extension != ".png") {
        return path + ": pictures are written as .png, .jpg, .jpeg or .webp";
    }
    codec::Bytes bytes;
    const gfx::BitmapRef pixels = image->pixels();
    const std::optional<std::string> problem =
        isJpeg   ? codec::encodeJpeg(*pixels, lossyQuality, bytes)
        : isWebp ? codec::encodeWebp(*pixels, lossyQuality, bytes)
                 : codec::encodePng(*pixels, bytes);
    return problem ? path + ": " + *problem : codec::writeFileAtomically(path, bytes);
}

}  // namespace kalim::cli
