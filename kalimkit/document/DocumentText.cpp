#include "kalimkit/document/DocumentText.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <map>
#include <utility>

#include "kalimkit/document/DocumentValues.h"
#include "kalimkit/document/Sha256.h"
#include "kalimkit/document/ToolEntry.h"
#include "kalimkit/json/Base64.h"
#include "kalimkit/json/JsonText.h"

namespace kalim {

namespace {

constexpr std::string_view formatName = "kalimkit";
// Pixels.
constexpr std::int64_t longestSide = 1'000'000;
constexpr JsonLimits limits{.depth = 64, .keys = 1000, .elements = mostDocumentTools};

void append(JsonValue::Object& members, const JsonValue::Object& others) {
    std::ranges::copy(others, std::back_inserter(members));
}

// ---- writing

JsonValue writePicture(const DocumentPicture& picture) {
    JsonValue::Object members{
        {"mediaType", picture.mediaType},
        {"size", JsonValue::Array{picture.size.width, picture.size.height}},
        {"sha256", picture.sha256},
    };
    if (!picture.file.empty()) members.emplace_back("file", picture.file);
    if (!picture.data.empty()) members.emplace_back("data", base64(picture.data));
    append(members, picture.others);
    return members;
}

JsonValue writeOutlines(const DocumentCanvas& canvas) {
    JsonValue::Array pairs;
    for (const auto& [text, outline] : canvas.textOutlines)
        pairs.push_back(JsonValue::Array{jsonOf(text), jsonOf(outline)});
    return pairs;
}

JsonValue writeCanvas(const DocumentCanvas& canvas, bool hasPicture) {
    JsonValue::Object members{
        {"pictureRect", hasPicture ? jsonOf(canvas.pictureRect) : JsonValue()},
        {"background", jsonOf(canvas.background)},
    };
    JsonValue components = componentsOf(canvas.background);
    if (!components.isNull()) {
        members.emplace_back("backgroundComponents", std::move(components));
    }
    if (canvas.basis > 0) {
        members.emplace_back("basis", canvas.basis);
    } else if (!canvas.bounds.isEmpty()) {
        members.emplace_back("bounds", jsonOf(canvas.bounds));
        members.emplace_back("scale", canvas.scale);
    }
    if (canvas.clips) members.emplace_back("clips", true);
    if (canvas.forgiving) members.emplace_back("forgiving", true);
    if (!canvas.textOutlines.empty()) members.emplace_back("textOutlines", writeOutlines(canvas));
    append(members, canvas.others);
    return members;
}

JsonValue writeMeasuring(const DocumentMeasuring& measuring) {
    JsonValue::Object members{
        {"calibration", measuring.calibration}, {"unit", measuring.unit}, {"show", measuring.show}};
    append(members, measuring.others);
    return members;
}

// A colour that one tool alone has needs no number.
JsonValue writeTools(const std::vector<DocumentTool>& tools) {
    std::map<gfx::ColorRef, int> uses;
    for (const DocumentTool& tool : tools) {
        if (tool.color) ++uses[tool.color];
    }
    const auto isShared = [&uses](const gfx::ColorRef& color) { return uses[color] > 1; };
    ColorNumbers colors;
    JsonValue::Array entries;
    entries.reserve(tools.size());
    for (const DocumentTool& tool : tools)
        entries.emplace_back(entryOf(tool, colors, isShared));
    return entries;
}

// ---- reading

void readBytes(DocumentPlace& place, const DocumentReading& reading, DocumentPicture& picture) {
    if (place.find("data") && place.find("file")) {
        return place.complain(place.pathOf("file") +
                              ": the picture's bytes are in \"data\" already");
    }
    if (place.find("file")) {
        picture.file = place.text("file");
        if (picture.file.empty()) place.fail("file", "a path");
        return;
    }
    if (!place.find("data") && !reading.needsBytes) return;
    const JsonValue& value = place.need("data");
    const std::string* const text = value.string();
    const auto bytes = text ? fromBase64(*text) : std::nullopt;
    if (!bytes || bytes->empty()) return place.fail("data", "a picture file in base64");
    if (!place.hasFailed() && sha256(*bytes) != picture.sha256) {
        return place.complain(place.pathOf("sha256") + " is not the hash of the picture's bytes");
    }
    picture.data = *bytes;
}

gfx::PixelSize readSize(DocumentPlace& place) {
    const JsonValue& value = place.need("size");
    const JsonValue::Array* const sides = value.array();
    const auto isSide = [](const JsonValue& side) {
        const double* const number = side.number();
        return number && *number >= 1 && *number <= longestSide && std::trunc(*number) == *number;
    };
    if (!sides || sides->size() != 2 || !std::ranges::all_of(*sides, isSide)) {
        place.fail("size", "two sides [w,h] in pixels");
        return {1, 1};
    }
    return {static_cast<int>(*sides->front().number()), static_cast<int>(*sides->back().number())};
}

std::optional<DocumentPicture> readPicture(DocumentPlace& document,
                                           const DocumentReading& reading) {
    if (document.need("picture").isNull()) return std::nullopt;
    DocumentPlace place = document.object("picture");
    DocumentPicture picture;
    picture.mediaType = place.text("mediaType");
    picture.size = readSize(place);
    picture.sha256 = place.text("sha256");
    const auto isDigit = [](char digit) {
        return (digit >= '0' && digit <= '9') || (digit >= 'a' && digit <= 'f');
    };
    const bool isOptional = picture.sha256.empty() && !reading.needsBytes;
    if (!isOptional &&
        (picture.sha256.size() != 64 || !std::ranges::all_of(picture.sha256, isDigit))) {
        place.fail("sha256", "64 hexadecimal digits");
    }
    readBytes(place, reading, picture);
    picture.others = place.others({"mediaType", "size", "sha256", "data", "file"});
    return picture;
}

std::optional<gfx::Rect> readCrop(DocumentPlace& place, const Document& document) {
    if (place.need("crop").isNull()) return std::nullopt;
    const gfx::Rect crop = readRect(place, "crop");
    const gfx::PixelSize size = document.picture ? document.picture->size : gfx::PixelSize{};
    const auto isWhole = [](double number) { return std::trunc(number) == number; };
    const bool isInside = crop.minX() >= 0 && crop.minY() >= 0 && crop.maxX() <= size.width &&
                          crop.maxY() <= size.height && crop.size.width > 0 && crop.size.height > 0;
    if (!isInside || !isWhole(crop.minX()) || !isWhole(crop.minY()) || !isWhole(crop.size.width) ||
        !isWhole(crop.size.height)) {
        place.fail("crop", "null or whole pixels [x,y,w,h] inside the picture");
    }
    return crop;
}

void readOutlines(DocumentPlace& place, DocumentCanvas& canvas) {
    constexpr std::string_view key = "textOutlines";
    constexpr std::size_t mostOutlines = 100;
    const JsonValue::Array* const pairs = place.find(key) ? place.find(key)->array() : nullptr;
    const auto colorOf = [](const JsonValue& value) {
        const auto color = value.string() ? gfx::Color::fromHex(*value.string()) : std::nullopt;
        return color ? gfx::makeColor(*color) : nullptr;
    };
    bool isRight = !place.find(key) || (pairs && pairs->size() <= mostOutlines);
    for (std::size_t i = 0; isRight && pairs && i < pairs->size(); ++i) {
        const JsonValue::Array* const pair = (*pairs)[i].array();
        isRight = pair && pair->size() == 2 && colorOf(pair->front()) && colorOf(pair->back());
        if (isRight)
            canvas.textOutlines.emplace_back(colorOf(pair->front()), colorOf(pair->back()));
    }
    if (!isRight) place.fail(key, "pairs of colours [\"#RRGGBBAA\",\"#RRGGBBAA\"]");
}

DocumentCanvas readCanvas(DocumentPlace place, bool hasPicture) {
    DocumentCanvas canvas;
    if (hasPicture) {
        canvas.pictureRect = readRect(place, "pictureRect");
        if (canvas.pictureRect.size.isEmpty())
            place.fail("pictureRect", "a rectangle with an area");
    } else if (!place.need("pictureRect").isNull()) {
        place.fail("pictureRect", "null without a picture");
    }
    canvas.background = readColor(place, "background");
    if (place.find("backgroundComponents"))
        canvas.background = readComponents(place, "backgroundComponents");
    constexpr double largestBasis = 10000;
    if (place.find("basis")) canvas.basis = place.number("basis", 1, largestBasis);
    if (place.find("bounds")) canvas.bounds = readRect(place, "bounds");
    constexpr double largestScale = 100;
    if (place.find("scale")) canvas.scale = place.number("scale", 0.01, largestScale);
    if (place.find("clips")) canvas.clips = place.flag("clips");
    if (place.find("forgiving")) canvas.forgiving = place.flag("forgiving");
    readOutlines(place, canvas);
    canvas.others = place.others({"pictureRect", "background", "backgroundComponents", "basis",
                                  "bounds", "scale", "clips", "forgiving", "textOutlines"});
    return canvas;
}

DocumentMeasuring readMeasuring(DocumentPlace place) {
    DocumentMeasuring measuring;
    measuring.calibration =
        place.number("calibration", -largestDocumentNumber, largestDocumentNumber);
    measuring.unit = place.text("unit");
    measuring.show = place.flag("show");
    measuring.others = place.others({"calibration", "unit", "show"});
    return measuring;
}

std::vector<DocumentTool> readTools(DocumentPlace& document, std::optional<std::string>& problem) {
    std::vector<DocumentTool> tools;
    const JsonValue::Array* const entries = document.need("tools").array();
    if (!entries) {
        document.fail("tools", "a list");
        return tools;
    }
    ColorNumbers colors;
    for (std::size_t i = 0; i < entries->size() && !problem; ++i) {
        DocumentPlace entry((*entries)[i], "tools[" + std::to_string(i) + "]", problem);
        tools.push_back(readEntry(entry, colors));
    }
    return tools;
}

void readHead(DocumentPlace& place) {
    if (place.text("format") != formatName) place.fail("format", "\"kalimkit\"");
    const double* const version = place.need("version").number();
    if (version && *version > Document::latestVersion) {
        place.complain("version " + quoted(*version) + " is newer than this program, which knows " +
                       std::to_string(Document::latestVersion));
    }
    place.whole("version", 1, Document::latestVersion);
}

}  // namespace

std::string documentText(const Document& document) {
    const DocumentPicture* const picture = document.picture ? &*document.picture : nullptr;
    JsonValue::Object members{
        {"format", std::string(formatName)},
        {"version", Document::latestVersion},
        {"generator", document.generator},
    };
    if (document.isSealed) members.emplace_back("sealed", true);
    members.emplace_back("picture", picture ? writePicture(*picture) : JsonValue());
    members.emplace_back("crop", document.cut.crop ? jsonOf(*document.cut.crop) : JsonValue());
    members.emplace_back("quarterTurns", document.cut.quarterTurns);
    members.emplace_back("canvas", writeCanvas(document.canvas, picture != nullptr));
    members.emplace_back("measuring", writeMeasuring(document.measuring));
    members.emplace_back("tools", writeTools(document.tools));
    append(members, document.others);
    return dumpJson(members) + "\n";
}

ReadDocument readDocument(std::string_view text, const DocumentReading& reading) {
    ReadDocument read;
    const ParsedJson parsed = parseJson(text, limits);
    if (parsed.error) {
        read.problem = parsed.error;
        return read;
    }
    Document& document = read.document;
    DocumentPlace place(parsed.value, {}, read.problem);
    readHead(place);
    if (read.problem) return read;
    if (place.find("generator")) document.generator = place.text("generator");
    if (place.find("sealed")) document.isSealed = place.flag("sealed");
    document.picture = readPicture(place, reading);
    document.cut.crop = readCrop(place, document);
    document.cut.quarterTurns = static_cast<int>(place.whole("quarterTurns", 0, 3));
    document.canvas = readCanvas(place.object("canvas"), document.picture.has_value());
    document.measuring = readMeasuring(place.object("measuring"));
    document.tools = readTools(place, read.problem);
    document.others = place.others({"format", "version", "generator", "sealed", "picture", "crop",
                                    "quarterTurns", "canvas", "measuring", "tools"});
    if (read.problem) document = {};
    return read;
}

}  // namespace kalim
