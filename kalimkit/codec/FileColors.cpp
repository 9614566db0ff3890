#include "kalimkit/codec/FileColors.h"

#include <utility>

#include "kalimkit/codec/DecodeSteps.h"
#include "kalimkit/codec/FileFormat.h"

namespace kalim::codec {

namespace {

FileColors colorsOf(ByteSpan file) {
    switch (fileFormat(file)) {
        case FileFormat::Jpeg:
            return jpegColors(file);
        case FileFormat::Png:
            return pngColors(file);
        case FileFormat::Webp:
            return webpColors(file);
        case FileFormat::Other:
            break;
    }
    return {};
}

}  // namespace

FileColors fileColors(ByteSpan file) {
    FileColors colors = colorsOf(file);
    if (!ColorConversion::fits(colors.profile, colors.samples)) colors.profile.clear();
    return colors;
}

RawPicture rawPicture(ByteSpan file) {
    DecodeResult decoded;
    switch (fileFormat(file)) {
        case FileFormat::Jpeg:
            decoded = decodeJpeg(file, {}, Coloring::Own);
            break;
        case FileFormat::Png:
            decoded = decodePng(file, {}, Coloring::Own);
            break;
        case FileFormat::Webp:
            decoded = decodeWebp(file, {}, Coloring::Own);
            break;
        case FileFormat::Other:
            return {};
    }
    if (decoded.error) return {};
    return {std::move(decoded.bitmap), decoded.orientation};
}

}  // namespace kalim::codec
