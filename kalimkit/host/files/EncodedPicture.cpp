#include "kalimkit/host/files/EncodedPicture.h"

#include <cstdint>
#include <memory>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/codec/Sandbox.h"

namespace kalim {

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
        return options.isSandboxed ? codec::savePictureSandboxed(result, source, options)
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
