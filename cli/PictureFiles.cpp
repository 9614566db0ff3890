#include "cli/PictureFiles.h"

#include <utility>

#include "cli/PictureFormat.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/Files.h"

namespace kalim::cli {

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
    const std::optional<PictureFormat> format = pictureFormatOfPath(path);
    if (!format) return path + ": pictures are written as " + pictureEndings;
    codec::Bytes bytes;
    const std::optional<std::string> problem = encode(*image, *format, bytes);
    return problem ? path + ": " + *problem : codec::writeFileAtomically(path, bytes);
}

}  // namespace kalim::cli
