#include "cli/Info.h"

#include <optional>
#include <utility>
#include <variant>

#include "cli/Complaint.h"
#include "cli/OpenedCanvas.h"
#include "cli/Opening.h"
#include "cli/StandardOutput.h"
#include "kalimkit/backend/cairo/CairoDevice.h"
#include "kalimkit/codec/ColorProfile.h"
#include "kalimkit/codec/ExifOrientation.h"
#include "kalimkit/codec/FileFormat.h"
#include "kalimkit/codec/ImportedFormat.h"
#include "kalimkit/codec/PersonalTraces.h"
#include "kalimkit/host/files/OpenedFile.h"
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

JsonValue describe(const codec::PersonalTraces& traces) {
    return JsonValue::Object{
        {"place", traces.place}, {"owner", traces.owner}, {"serialNumber", traces.serialNumber}};
}

// The bytes of the picture's own file.
codec::ByteSpan pictureFile(const OpenedFile& opened) {
    if (!opened.document) return opened.bytes;
    if (!opened.document->picture) return {};
    const std::string& data = opened.document->picture->data;
    return {reinterpret_cast<const std::uint8_t*>(data.data()), data.size()};
}

// Nothing of its data is read, and none go along with a result.
JsonValue::Object describeImported(const OpenedFile& opened, codec::ByteSpan file) {
    const codec::ImportedFacts& facts = *opened.picture.imported;
    const std::string& profile = facts.profileName;
    return {{"mediaType", codec::mediaType(codec::importedFormat(file))},
            {"size", uprightSize(opened.picture)},
            {"orientation", codec::exifOrientationNumber(opened.picture.orientation)},
            {"bitDepth", facts.bitDepth},
            {"colorProfile", profile.empty() ? JsonValue() : JsonValue(profile)},
            {"bytes", opened.bytes.size()},
            {"metadata", {}}};
}

JsonValue::Object describePicture(const OpenedFile& opened) {
    const codec::ByteSpan file = pictureFile(opened);
    if (file.empty()) {
        return {{"mediaType", {}}, {"size", {}},         {"orientation", {}},
                {"bitDepth", {}},  {"colorProfile", {}}, {"bytes", opened.bytes.size()},
                {"metadata", {}}};
    }
    if (opened.picture.imported) return describeImported(opened, file);
    codec::PersonalTraces traces = codec::personalTraces(file);
    // The picture around a document may say more.
    if (opened.isInside) traces |= codec::personalTraces(opened.bytes);
    return {{"mediaType", codec::mediaType(codec::fileFormat(file))},
            {"size", uprightSize(opened.picture)},
            {"orientation", codec::exifOrientationNumber(opened.picture.orientation)},
            {"bitDepth", codec::bitDepth(file)},
            {"colorProfile", colorProfile(file)},
            {"bytes", opened.bytes.size()},
            {"metadata", describe(traces)}};
}

JsonValue describe(const DocumentTool& described, const MDrawTool& tool) {
    JsonValue text;
    for (const auto& [name, value] : described.details) {
        const auto* const letters = std::get_if<std::string>(&value);
        if (name == "text" && letters) text = *letters;
    }
    const std::string measureText = tool.measureText();
    return JsonValue::Object{
        {"class", described.className},
        {"text", std::move(text)},
        {"measureText", measureText.empty() ? JsonValue() : JsonValue(measureText)}};
}

// What a tool measures it tells only on a canvas, in the order of the document. Uses the picture
// up.
std::optional<std::string> describeTools(OpenedFile& opened, JsonValue& described) {
    const auto device = gfx::CairoDevice::make();
    const Document document = *opened.document;
    OpenedCanvas canvas(*device, document, false);
    if (auto problem = canvas.open(opened)) return problem;
    JsonValue::Array tools;
    const ToolList& drawn = canvas.canvas().tools();
    for (std::size_t i = 0; i < drawn.size(); ++i)
        tools.push_back(describe(document.tools.at(i), *drawn[i]));
    described = std::move(tools);
    return std::nullopt;
}

JsonValue describe(const std::optional<gfx::Rect>& crop) {
    if (!crop) return {};
    return JsonValue::Array{crop->minX(), crop->minY(), crop->size.width, crop->size.height};
}

}  // namespace

int info(const InfoOptions& options) {
    OpenedFile opened = openFile(options.file, sandboxed(options.isFlat));
    if (opened.error) return complain(*opened.error);
    JsonValue::Object members{{"kind", opened.document ? "document" : "picture"}};
    for (JsonValue::Member& member : describePicture(opened))
        members.push_back(std::move(member));
    JsonValue tools;
    auto problem = opened.document ? describeTools(opened, tools) : std::nullopt;
    if (problem) return complain(options.file + ": " + *problem);
    const Document* const document = opened.document ? &*opened.document : nullptr;
    members.emplace_back("tools", std::move(tools));
    members.emplace_back("crop", document ? describe(document->cut.crop) : JsonValue());
    members.emplace_back("quarterTurns",
                         document ? JsonValue(document->cut.quarterTurns) : JsonValue());
    members.emplace_back("sealed", document ? JsonValue(document->isSealed) : JsonValue());
    StandardOutput output;
    output.printLine(dumpJson(members));
    return output.error() ? complain(*output.error()) : 0;
}

}  // namespace kalim::cli
