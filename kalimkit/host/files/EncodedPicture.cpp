#include "kalimkit/host/files/EncodedPicture.h"

#include <cstddef>
#include <cstdint>
#include <memory>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/codec/Sandbox.h"

namespace kalim {

namespace {

// Reading the source's file once more has the usual caps. Encoding comes on top, whose costs are
// those of the result's own pixels, also on a machine that is busy.
codec::SandboxCaps capsFor(const gfx::Bitmap& result) {
    constexpr double secondsPerPixel = 5e-6;
    constexpr std::size_t copies = 4;
    codec::SandboxCaps caps;
    caps.maxSeconds += secondsPerPixel * result.width() * result.height();
    caps.maxMemory += copies * result.byteCount();
    return caps;
}

}  // namespace

codec::SavedPicture encodePicture(const gfx::Image& image, const ExportedPicture& exported,
                                  const PictureOrigins& origins,
                                  const codec::SavingOptions& options) {
    const auto origin = origins.find(exported.source);
    codec::SavingSource source;
    gfx::BitmapRef pixels;
    if (origin) {
        source.file = {reinterpret_cast<const std::uint8_t*>(origin->data.data()),
                       origin->data.size()};
    }
    if (origin && !exported.part.isEmpty()) {
        pixels = exported.source->pixels();
        source.pixels = pixels.get();
        source.part = exported.part;
        source.x = exported.x;
        source.y = exported.y;
        source.quarterTurns = exported.quarterTurns;
        source.hidden = exported.hidden;
    }
    const auto save = [&](const gfx::Bitmap& result) {
        return options.isSandboxed
                   ? codec::savePictureSandboxed(result, source, options, capsFor(result))
                   : codec::savePicture(result, source, options);
    };
    return save(*image.pixels());
}

codec::SavedPicture encodeExport(const gfx::ImageRef& image, const MDrawView& canvas,
                                 const PictureOrigins& origins,
                                 const codec::SavingOptions& options) {
    ExportedPicture notAtItsScale;
    notAtItsScale.source = canvas.sourceImage();
    return encodePicture(*image, canvas.exportedPicture(image).value_or(notAtItsScale), origins,
                         options);
}

}  // namespace kalim
