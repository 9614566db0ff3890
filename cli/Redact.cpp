#include "cli/Redact.h"

#include <unistd.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <utility>

#include "cli/Complaint.h"
#include "cli/Opening.h"
#include "cli/StandardOutput.h"
#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/canvas/CanvasMosaic.h"
#include "kalimkit/canvas/CanvasPicture.h"
#include "kalimkit/canvas/ExportedPicture.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/codec/Files.h"
#include "kalimkit/host/files/EncodedPicture.h"
#include "kalimkit/host/files/OpenedFile.h"
#include "kalimkit/host/headless/HeadlessEnvironment.h"
#include "kalimkit/host/seat/EnvironmentScope.h"
#include "kalimkit/image/HiddenRegion.h"
#include "kalimkit/image/MDrawImageUtil.h"
#include "kalimkit/image/MosaicBlocks.h"
#include "kalimkit/image/SealedBlocks.h"
#include "kalimkit/shapes/MDrawMosiac.h"

namespace kalim::cli {

namespace {

// A picture with what is hidden in it.
class Redaction {
public:
    // An upright picture.
    Redaction(const RedactOptions& options, gfx::Device& device, gfx::ImageRef picture)
        : _options(options), _device(device), _picture(std::move(picture)) {
        _exported.source = _picture;
        const gfx::PixelSize size = _picture->pixelSize();
        _exported.part = {0, 0, size.width, size.height};
    }

    // Why a rectangle hides nothing of the picture; empty where each hides something.
    std::string problem() const {
        const gfx::PixelSize size = _picture->pixelSize();
        for (const gfx::Rect& rect : _options.rects) {
            if (!rect.intersection({0, 0, double(size.width), double(size.height)}).isEmpty())
                continue;
            return "--rect: the rectangle from " + text(rect.minX()) + "," + text(rect.minY()) +
                   " on lies beside the picture, which has " + std::to_string(size.width) + " x " +
                   std::to_string(size.height) + " pixels";
        }
        return {};
    }

    // Null where there is no room for it.
    gfx::ImageRef image() {
        using enum RedactOptions::Style;
        const bool isCertain = _options.style == Sealed || _options.style == Solid;
        return isCertain ? hidden() : covered();
    }
    // As of the last image.
    const ExportedPicture& exported() const { return _exported; }

private:
    // Whole pixels however far away.
    static std::string text(double number) {
        std::array<char, 32> digits{};
        std::snprintf(digits.data(), digits.size(), "%.15g", std::floor(number));
        return digits.data();
    }

    // As it lies on the canvas of an editor: what is hidden there looks the same.
    CanvasPicture onCanvas() const {
        CanvasPicture picture;
        picture.take(_picture, {}, MDrawView::usualBasis);
        return picture;
    }

    gfx::ImageRef hidden() {
        std::vector<HiddenRegion> regions;
        for (const gfx::Rect& rect : _options.rects) {
            const gfx::PixelRect grown = grownToGrid(rect, _picture->grid(), _picture->pixelSize());
            HiddenRegion region{{grown}, {}};
            if (_options.style == RedactOptions::Style::Solid) region.solid = *_options.color;
            _exported.hidden.push_back(grown);
            regions.push_back(region);
        }
        const int level = onCanvas().sealedLevel();
        gfx::Bitmap pixels = *_picture->pixels();
        const gfx::Bitmap sealed = sealedColors(pixels, _exported.hidden, level);
        hideRegions(pixels, regions, sealed, level);
        return _device.makeImage(std::move(pixels), 1, gfx::ImageOrientation::Up);
    }

    gfx::ImageRef covered() const {
        const gfx::PixelSize size = _picture->pixelSize();
        const gfx::Rect whole(0, 0, size.width, size.height);
        const auto surface = _device.makeSurface(whole.size, 1, false);
        if (!surface) return nullptr;
        gfx::Context& context = surface->context();
        context.setInterpolation(gfx::Interpolation::None);
        context.drawImage(*_picture, whole);
        const gfx::Paint fill = cosmeticFill(whole);
        for (const gfx::Rect& rect : _options.rects) {
            const gfx::Rect part = rect.intersection(whole);
            MDrawMosiac::cover(context, fill, {&part, 1});
        }
        return surface->makeImage();
    }

    gfx::Paint cosmeticFill(const gfx::Rect& whole) const {
        if (_options.style == RedactOptions::Style::Mosaic) {
            return MosaicBlocks(_device, *_picture->pixels(), CanvasMosaic::level)
                .patternOver(whole);
        }
        CanvasMosaic mosaic;
        mosaic.take(onCanvas(), CanvasMosaic::When::Asked);
        return mosaic.softFill(whole);
    }

    const RedactOptions& _options;
    gfx::Device& _device;
    gfx::ImageRef _picture;
    ExportedPicture _exported;
};

std::optional<PictureFormat> formatOf(const RedactOptions& options, codec::ByteSpan file) {
    if (options.format) return options.format;
    return options.output == "-" ? pictureFormatOfBytes(file) : pictureFormatOfPath(options.output);
}

std::optional<std::string> write(const RedactOptions& options, const codec::SavedPicture& saved) {
    std::optional<std::string> problem;
    if (options.output == "-") {
        StandardOutput output;
        output.write(saved.bytes);
        problem = output.error();
    } else {
        problem = codec::writeFileAtomically(options.output, saved.bytes);
    }
    if (!problem) tellOf(saved, options.writing, options.output);
    return problem;
}

std::optional<std::string> redactFile(const RedactOptions& options, gfx::Device& device) {
    if (options.output == "-" && ::isatty(STDOUT_FILENO) != 0)
        return "standard output is a terminal; name a file with -o";
    OpenedFile opened = openFile(options.input, sandboxed(true));
    if (opened.error) return opened.error;
    if (opened.document) return options.input + ": this is a document, not a picture";
    const std::optional<PictureFormat> format = formatOf(options, opened.bytes);
    if (!format) return options.output + ": pictures are written as " + pictureEndings;
    PictureOrigins origins;
    const gfx::ImageRef picture = origins.make(device, opened);
    if (!picture) return options.input + ": there is no room for a picture of this size";
    Redaction redaction(options, device, picture);
    if (const std::string problem = redaction.problem(); !problem.empty()) return problem;
    const gfx::ImageRef image = redaction.image();
    if (!image) return options.input + ": there is no room for a picture of this size";
    const codec::SavedPicture saved = encodePicture(*image, redaction.exported(), origins,
                                                    savingOptions(options.writing, *format));
    if (saved.error) return options.output + ": " + *saved.error;
    return write(options, saved);
}

}  // namespace

std::string readRedactStyle(const std::string& text, RedactOptions::Style& style) {
    using enum RedactOptions::Style;
    static constexpr std::pair<const char*, RedactOptions::Style> styles[] = {
        {"sealed", Sealed}, {"solid", Solid}, {"blur", Blur}, {"mosaic", Mosaic}};
    for (const auto& [name, value] : styles) {
        if (text != name) continue;
        style = value;
        return {};
    }
    return "must be sealed, solid, blur or mosaic, not " + text;
}

int redact(const RedactOptions& options) {
    const auto device = gfx::CairoDevice::make();
    const EnvironmentScope scope(std::make_shared<HeadlessEnvironment>(*device, 1.0));
    const std::optional<std::string> problem = redactFile(options, *device);
    return problem ? complain(*problem) : 0;
}

}  // namespace kalim::cli
