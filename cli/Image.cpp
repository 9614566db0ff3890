#include "cli/Image.h"

#include <memory>
#include <optional>
#include <utility>

#include "cli/Complaint.h"
#include "cli/PictureFiles.h"
#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/image/MDrawImageUtil.h"

namespace kalim::cli {

namespace {

gfx::ImageRef operateOn(const ImageOptions& options, const gfx::ImageRef& picture) {
    switch (options.operation) {
        case ImageOptions::Operation::Pixelate:
            return MDrawImageUtil::mosiacImageMosaicLevel(picture, options.level);
        case ImageOptions::Operation::Fit:
            return MDrawImageUtil::resizedImageToFitInSizeScaleIfSmaller(picture, options.size,
                                                                         options.enlarge);
        case ImageOptions::Operation::Crop:
            return MDrawImageUtil::imageFromImageInRect(picture, options.rect);
    }
    return nullptr;
}

std::optional<std::string> convert(const ImageOptions& options, gfx::Device& device) {
    PictureFiles files(device);
    auto [picture, problem] = files.loadPicture(options.input);
    if (!picture) return std::move(problem);
    picture = MDrawImageUtil::fixOrientation(picture);
    const gfx::ImageRef result = picture ? operateOn(options, picture) : nullptr;
    if (!result) return options.input + ": nothing of the picture is left";
    return files.savePicture(options.output, result);
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
