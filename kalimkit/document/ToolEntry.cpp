#include "kalimkit/document/ToolEntry.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <utility>

#include "kalimkit/document/DocumentValues.h"
#include "kalimkit/document/UnknownTool.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/shapes/ToolRegistry.h"

namespace kalim {

namespace {

constexpr std::int64_t largestWhole = std::int64_t{1} << 53U;

// What is of a known kind but not known there stays with the tool.
JsonValue::Object foreignKeysOf(const MDrawTool& tool) {
    if (tool.foreignKeys().empty()) return {};
    ParsedJson keys = parseJson(tool.foreignKeys());
    return keys.value.object() ? std::move(*keys.value.object()) : JsonValue::Object();
}

std::string foreignKeysFor(MDrawTool& tool, const JsonValue::Object& others) {
    JsonValue::Object foreign;
    for (const auto& [name, value] : others) {
        const std::optional<ToolDetailValue> detail = detailFrom(value);
        if (!detail || !tool.takeDetail(name, *detail)) foreign.emplace_back(name, value);
    }
    return foreign.empty() ? std::string() : dumpJson(foreign);
}

// Null for a class that is not known, or that nobody makes.
const ToolClass* kindNamed(std::string_view name) {
    const ToolClass* const kind = ToolRegistry::current().kindNamed(name);
    return kind && kind->makeWithStartPoint ? kind : nullptr;
}

const UnknownTool* asUnknown(const MDrawTool& tool) {
    return dynamic_cast<const UnknownTool*>(&tool);
}

}  // namespace

// ---- tools and values

DocumentTool describeTool(const MDrawTool& tool) {
    if (const UnknownTool* const unknown = asUnknown(tool)) return unknown->described();
    DocumentTool described;
    described.className = tool.toolClass().name;
    described.startPoint = tool.startPoint();
    described.endPoint = tool.endPoint();
    described.color = tool.color();
    described.lineWidth = tool.lineWidth();
    described.drawType = tool.drawType();
    described.rotateAngle = tool.rotateAngle();
    described.lastRotateAngle = tool.lastRotateAngle();
    described.quarterTurns = tool.quarterTurns();
    described.groups = tool.groups();
    described.isLocked = tool.isLocked();
    for (const ToolDetail& detail : tool.keptDetails())
        described.details.emplace_back(std::string(detail.name), detail.value);
    described.properties = tool.chosenProperties();
    described.others = foreignKeysOf(tool);
    return described;
}

void takeDescription(MDrawTool& tool, const DocumentTool& described) {
    if (asUnknown(tool)) return;
    tool.setColor(described.color);
    tool.setLineWidth(described.lineWidth);
    tool.setDrawType(described.drawType);
    for (const auto& [name, value] : described.details)
        tool.takeDetail(name, value);
    for (const ToolProperty& property : tool.toolClass().properties())
        tool.setProperty(property.name, property.usualValue());
    for (const auto& [name, value] : described.properties)
        tool.setProperty(name, value);
    tool.setForeignKeys(foreignKeysFor(tool, described.others));
    tool.setQuarterTurns(described.quarterTurns);
    tool.setGroups(described.groups);
    tool.setLocked(described.isLocked);
    // Last, for some of the above move them.
    tool.setStartPoint(described.startPoint);
    tool.setEndPoint(described.endPoint);
    tool.setRotateAngle(described.rotateAngle);
    tool.setLastRotateAngle(described.lastRotateAngle);
    tool.refreshTransform();
}

ToolRef makeTool(const DocumentTool& described, const std::function<void(MDrawTool&)>& prepare) {
    const ToolClass* const kind =
        described.isOfKnownClass ? kindNamed(described.className) : nullptr;
    const ToolRef tool = kind ? kind->makeWithStartPoint(described.startPoint)
                              : ToolRef(UnknownTool::initWithDescription(described));
    prepare(*tool);
    takeDescription(*tool, described);
    tool->setIsNewBuild(false);
    tool->finalize();
    tool->settle();
    // Finishing may bring a tool within bounds that it was not kept to before.
    takeDescription(*tool, described);
    return tool;
}

// ---- colours

std::optional<std::int64_t> ColorNumbers::numberOf(const gfx::ColorRef& color) {
    if (!color) return std::nullopt;
    const auto [entry, isNew] = _numbers.try_emplace(color, std::ssize(_colors));
    while (isNew && !_colors.try_emplace(entry->second, color).second)
        ++entry->second;
    return entry->second;
}

gfx::ColorRef ColorNumbers::colorOf(std::int64_t number, const gfx::ColorRef& color) {
    const auto [entry, isNew] = _colors.try_emplace(number, color);
    if (isNew) _numbers.try_emplace(color, number);
    return gfx::equalColors(entry->second, color) ? entry->second : nullptr;
}

// ---- values and JSON

constexpr std::string_view propertiesKey = "properties";

namespace {

JsonValue jsonOfProperty(const ToolPropertyValue& value) {
    return std::visit([](const auto& chosen) { return JsonValue(chosen); }, value);
}

std::optional<ToolPropertyValue> propertyFrom(const JsonValue& value) {
    if (const double* const number = value.number()) return *number;
    if (const std::string* const words = value.string()) return *words;
    return std::nullopt;
}

// Beside those that nobody here knows.
void addProperties(JsonValue::Object& entry, const ToolPropertyValues& properties) {
    if (properties.empty()) return;
    auto place = std::ranges::find(entry, propertiesKey, &JsonValue::Member::first);
    if (place == entry.end())
        place = entry.insert(entry.end(), {std::string(propertiesKey), JsonValue::Object()});
    for (const auto& [name, value] : properties)
        place->second.object()->emplace_back(name, jsonOfProperty(value));
}

// Those that are not known stay among the tool's other members.
void readProperties(DocumentPlace& place, const ToolClass& kind, DocumentTool& tool) {
    if (!place.find(propertiesKey)) return;
    const JsonValue& all = place.need(propertiesKey);
    if (!all.object()) return place.fail(propertiesKey, "an object");
    std::erase_if(tool.others, [](const auto& member) { return member.first == propertiesKey; });
    JsonValue::Object unknown;
    DocumentPlace own = place.object(propertiesKey);
    for (const auto& [name, value] : *all.object()) {
        const ToolProperty* const known = kind.propertyNamed(name);
        const auto chosen = propertyFrom(value);
        if (!known) {
            unknown.emplace_back(name, value);
        } else if (chosen && known->takes(*chosen)) {
            tool.properties.emplace_back(name, *chosen);
        } else {
            own.fail(name, "one that a " + std::string(kind.name) + " can have");
        }
    }
    if (!unknown.empty()) tool.others.emplace_back(propertiesKey, std::move(unknown));
}

}  // namespace

JsonValue::Object entryOf(const DocumentTool& tool, ColorNumbers& colors,
                          const std::function<bool(const gfx::ColorRef&)>& isShared) {
    JsonValue::Object entry;
    if (!tool.isOfKnownClass) {
        entry = tool.others;
        const auto number = std::ranges::find(entry, "colorId", &JsonValue::Member::first);
        if (number != entry.end() && tool.color) number->second = *colors.numberOf(tool.color);
        return entry;
    }
    entry = {{"class", tool.className},
             {"startPoint", jsonOf(tool.startPoint)},
             {"endPoint", jsonOf(tool.endPoint)},
             {"color", jsonOf(tool.color)}};
    JsonValue components = componentsOf(tool.color);
    if (!components.isNull()) entry.emplace_back("colorComponents", std::move(components));
    if (tool.color && isShared(tool.color))
        entry.emplace_back("colorId", *colors.numberOf(tool.color));
    entry.emplace_back("lineWidth", tool.lineWidth);
    entry.emplace_back("drawType", tool.drawType);
    entry.emplace_back("rotateAngle", tool.rotateAngle);
    entry.emplace_back("lastRotateAngle", tool.lastRotateAngle);
    if (tool.quarterTurns != 0) entry.emplace_back("quarterTurns", tool.quarterTurns);
    if (!tool.groups.empty())
        entry.emplace_back("groups", JsonValue::Array(tool.groups.begin(), tool.groups.end()));
    if (tool.isLocked) entry.emplace_back("locked", true);
    for (const auto& [name, value] : tool.details)
        entry.emplace_back(name, jsonOf(value));
    std::ranges::copy(tool.others, std::back_inserter(entry));
    addProperties(entry, tool.properties);
    return entry;
}

namespace {

void readColors(DocumentPlace& place, ColorNumbers& colors, DocumentTool& tool) {
    tool.color = readColor(place, "color");
    if (place.find("colorComponents")) {
        const gfx::ColorRef exact = readComponents(place, "colorComponents");
        const bool isSame = tool.color && exact->hex() == tool.color->hex();
        if (!isSame) place.fail("colorComponents", "those of the colour");
        tool.color = exact;
    }
    if (!place.find("colorId")) return;
    const std::int64_t number = place.whole("colorId", 0, largestWhole);
    const gfx::ColorRef shared = tool.color ? colors.colorOf(number, tool.color) : nullptr;
    if (!shared) place.fail("colorId", "the number of one colour");
    tool.color = shared;
}

void readArrangement(DocumentPlace& place, DocumentTool& tool) {
    constexpr std::size_t mostGroups = 32;
    if (place.find("locked")) tool.isLocked = place.flag("locked");
    const JsonValue* const value = place.find("groups");
    if (!value) return;
    const auto isNumber = [](const JsonValue& each) {
        const double* const number = each.number();
        return number && *number >= 1 && *number <= largestWhole && std::trunc(*number) == *number;
    };
    const JsonValue::Array* const numbers = value->array();
    if (!numbers || numbers->size() > mostGroups || !std::ranges::all_of(*numbers, isNumber))
        return place.fail("groups", "the numbers of up to 32 groups, the outermost first");
    for (const JsonValue& number : *numbers)
        tool.groups.push_back(static_cast<std::int64_t>(*number.number()));
}

// Something may be read of it; nothing has to be.
void readUnknown(DocumentPlace& place, ColorNumbers& colors, DocumentTool& tool) {
    tool.isOfKnownClass = false;
    tool.others = place.others({});
    std::optional<std::string> passedOver;
    const JsonValue entry(tool.others);
    DocumentPlace own(entry, {}, passedOver);
    const gfx::Point start = readPoint(own, "startPoint");
    const gfx::Point end = readPoint(own, "endPoint");
    if (!passedOver) {
        tool.startPoint = start;
        tool.endPoint = end;
    }
    passedOver.reset();
    readColors(own, colors, tool);
}

}  // namespace

DocumentTool readEntry(DocumentPlace& place, ColorNumbers& colors) {
    DocumentTool tool;
    tool.className = place.text("class");
    if (place.hasFailed()) return tool;
    const ToolClass* const kind = kindNamed(tool.className);
    if (!kind) {
        readUnknown(place, colors, tool);
        return tool;
    }
    constexpr double largestAngle = 1e9;
    tool.startPoint = readPoint(place, "startPoint");
    tool.endPoint = readPoint(place, "endPoint");
    place.need("color");
    readColors(place, colors, tool);
    tool.lineWidth = place.number("lineWidth", 0, largestDocumentNumber);
    tool.drawType = static_cast<std::uint64_t>(place.whole("drawType", 0, largestWhole));
    tool.rotateAngle = place.number("rotateAngle", -largestAngle, largestAngle);
    tool.lastRotateAngle = place.number("lastRotateAngle", -largestAngle, largestAngle);
    if (place.find("quarterTurns"))
        tool.quarterTurns = static_cast<int>(place.whole("quarterTurns", 0, 3));
    readArrangement(place, tool);
    tool.others = place.others({"class", "startPoint", "endPoint", "color", "colorComponents",
                                "colorId", "lineWidth", "drawType", "rotateAngle",
                                "lastRotateAngle", "quarterTurns", "groups", "locked"});
    readProperties(place, *kind, tool);
    for (const ToolDetailRule& rule : kind->details()) {
        if (!rule.isNeeded && !place.find(rule.name)) continue;
        tool.details.emplace_back(std::string(rule.name), readDetail(place, rule));
        std::erase_if(tool.others,
                      [&rule](const auto& member) { return member.first == rule.name; });
    }
    return tool;
}

}  // namespace kalim
