#include "kalimkit/codec/Saving.h"

#include "kalimkit/codec/Encode.h"

namespace kalim::codec {

namespace {

constexpr int usualQuality = 90;

}  // namespace

SavedPicture savePicture(const gfx::Bitmap& result, const SavingSource& /*source*/,
                         const SavingOptions& options) {
    SavedPicture saved;
    const int quality = options.quality.value_or(usualQuality);
    switch (options.format) {
        case FileFormat::Jpeg:
            saved.error = encodeJpeg(result, quality, saved.bytes);
            break;
        case FileFormat::Webp:
            saved.error = encodeWebp(result, quality, saved.bytes);
            break;
        default:
            saved.error = encodePng(result, saved.bytes);
    }
    return saved;
}

}  // namespace kalim::codec
