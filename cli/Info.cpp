#include "cli/Info.h"

#include <optional>
#include <utility>

#include "cli/Complaint.h"
#include "cli/StandardOutput.h"
#include "kalimkit/codec/ColorProfile.h"
#include "kalimkit/codec/Decode.h"
#include "kalimkit/codec/ExifOrientation.h"
#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/PersonalTraces.h"
#include "kalimkit/json/JsonText.h"

namespace kalim::cli {

namespace {

JsonValue uprightSize(const codec::DecodeResult& picture) {
    gfx::PixelSize size = picture.bitmap.size();
    if (gfx::exchangesSides(picture.orientation)) std::swap(size.width, size.height);
    return JsonValue::Array{size.width, size.height};
}

JsonValue colorProfile(codec::ByteSpan file) {
    const std::optional<std::string> name = codec::colorProfileName(file);
    return name ? JsonValue(*name) : JsonValue();
}

JsonValue metadata(codec::ByteSpan file) {
    const codec::PersonalTraces traces = codec::personalTraces(file);
    return JsonValue::Object{
        {"place", traces.place}, {"owner", traces.owner}, {"serialNumber", traces.serialNumber}};
}

JsonValue describe(codec::ByteSpan file, const codec::DecodeResult& picture) {
    return JsonValue::Object{
        {"kind", "picture"},
        {"mediaType", codec::mediaType(codec::fileFormat(file))},
        {"size", uprightSize(picture)},
        {"orientation", codec::exifOrientationNumber(picture.orientation)},
        {"colorProfile", colorProfile(file)},
        {"bytes", file.size()},
        {"metadata", metadata(file)},
        {"tools", {}},
        {"crop", {}},
        {"quarterTurns", {}},
        {"sealed", {}},
    };
}

}  // namespace

int info(const InfoOptions& options) {
    const bool isPiped = options.file == "-";
    const std::string name = isPiped ? "standard input" : options.file;
    codec::Bytes file;
    if (const auto problem = codec::readPictureFile(isPiped ? "/dev/stdin" : name, file))
        return complain(*problem);
    const codec::DecodeResult picture = codec::decode(file, name);
    if (picture.error) return complain(*picture.error);
    StandardOutput output;
    output.printLine(dumpJson(describe(file, picture)));
    return output.error() ? complain(*output.error()) : 0;
}

}  // namespace kalim::cli
