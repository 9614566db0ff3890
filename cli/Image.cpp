#include "cli/Image.h"

#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <utility>

#include "cli/Complaint.h"
#include "cli/Opening.h"
#include "cli/PictureFiles.h"
#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/image/PictureCut.h"

namespace kalim::cli {

namespace {

int counterClockwise(const ImageOptions& options) {
    constexpr int circle = 4;
    return (circle - options.quarters % circle) % circle;
}

// The whole of it, or a part, whose blocks begin at its corner.
gfx::ImageRef pixelated(const ImageOptions& options, const gfx::ImageRef& picture,
                        gfx::Device& device) {
    if (options.rect.isEmpty())
        return MDrawImageUtil::mosiacImageMosaicLevel(picture, options.level);
    const gfx::Rect part = MDrawImageUtil::pixelsInRect(picture->pixelSize(), options.rect);
    const gfx::ImageRef cut = MDrawImageUtil::imageFromImageInRect(picture, options.rect);
    const gfx::ImageRef blocks =
        cut ? MDrawImageUtil::mosiacImageMosaicLevel(cut, options.level) : nullptr;
    if (!blocks) return nullptr;
    gfx::Bitmap pixels = *picture->pixels();
    const gfx::BitmapRef patch = blocks->pixels();
    for (int y = 0; y < patch->height(); ++y) {
        std::copy_n(patch->row(y), patch->stride(),
                    pixels.row(static_cast<int>(part.minY()) + y) +
                        std::ptrdiff_t{4} * static_cast<int>(part.minX()));
    }
    return device.makeImage(std::move(pixels), 1, gfx::ImageOrientation::Up);
}

gfx::ImageRef operateOn(const ImageOptions& options, const gfx::ImageRef& picture,
                        gfx::Device& device) {
    switch (options.operation) {
        case ImageOptions::Operation::Pixelate:
            return pixelated(options, picture, device);
        case ImageOptions::Operation::Fit:
            return MDrawImageUtil::resizedImageToFitInSizeScaleIfSmaller(picture, options.size,
                                                                         options.enlarge);
        case ImageOptions::Operation::Crop:
            return MDrawImageUtil::imageFromImageInRect(picture, options.rect);
        case ImageOptions::Operation::Turn:
            return turnedImage(picture, counterClockwise(options));
    }
    return nullptr;
}

// Where the picture's own pixels are in what has become of it.
ExportedPicture originOf(const ImageOptions& options, const gfx::ImageRef& picture,
                         const gfx::ImageRef& result) {
    const gfx::PixelSize size = picture->pixelSize();
    ExportedPicture exported;
    exported.source = picture;
    const bool isScaled =
        options.operation == ImageOptions::Operation::Fit && result->pixelSize() != size;
    if (isScaled) return exported;
    exported.part = {0, 0, size.width, size.height};
    if (options.operation == ImageOptions::Operation::Turn)
        exported.quarterTurns = counterClockwise(options);
    if (options.operation == ImageOptions::Operation::Crop) {
        const gfx::Rect part = MDrawImageUtil::pixelsInRect(size, options.rect);
        exported.part = {static_cast<int>(part.minX()), static_cast<int>(part.minY()),
                         static_cast<int>(part.size.width), static_cast<int>(part.size.height)};
    }
    return exported;
}

std::optional<std::string> convert(const ImageOptions& options, gfx::Device& device) {
    const bool isStandard = options.output == "-";
    if (isStandard && ::isatty(STDOUT_FILENO) != 0)
        return "standard output is a terminal; name a file";
    OpenedFile opened = openFile(options.input, sandboxed(true));
    if (opened.error) return opened.error;
    if (opened.document) return options.input + ": this is a document, not a picture";
    PictureFiles files(device, options.writing);
    if (isStandard) files.useStandardOutput(opened.bytes);
    auto [picture, problem] = files.takePicture(std::move(opened));
    if (!picture) return std::move(problem);
    picture = MDrawImageUtil::fixOrientation(picture);
    const gfx::ImageRef result = picture ? operateOn(options, picture, device) : nullptr;
    if (!result) return options.input + ": nothing of the picture is left";
    return files.savePicture(options.output, result, originOf(options, picture, result));
}

}  // namespace

int image(const ImageOptions& options) {
    const auto device = gfx::CairoDevice::make();
    // One pixel a point: sizes on the command line are pixels.
    const auto previous =
        ui::Environment::install(std::make_shared<HeadlessEnvironment>(*device, 1.0));
    const std::optional<std::string> problem = convert(options, *device);
    ui::Environment::install(previous);
    return problem ? complain(*problem) : 0;
}

}  // namespace kalim::cli
