#include "kalimkit/host/headless/CanvasPrint.h"

#include <algorithm>
#include <string>
#include <variant>
#include <vector>

#include "kalimkit/canvas/MDrawMutableSelect.h"
#include "kalimkit/host/headless/ScenarioValues.h"

namespace kalim {

namespace {

JsonValue describeDetail(double value) {
    return value;
}

JsonValue describeDetail(const std::string& value) {
    return value;
}

JsonValue describeDetail(const std::vector<gfx::Point>& points) {
    JsonValue::Array list;
    for (const gfx::Point p : points)
        list.push_back(toJson(p));
    return list;
}

JsonValue describeDetail(const PointLines& lines) {
    JsonValue::Array list;
    for (const auto& line : lines)
        list.push_back(describeDetail(line));
    return list;
}

JsonValue describeTool(const MDrawTool& tool) {
    const std::string measureText = tool.measureText();
    JsonValue::Object members{
        {"class", std::string(tool.toolClass().name)},
        {"name", tool.name()},
        {"startPoint", toJson(tool.startPoint())},
        {"endPoint", toJson(tool.endPoint())},
        {"color", toJson(tool.color())},
        {"lineWidth", tool.lineWidth()},
        {"drawType", tool.drawType()},
        {"rotateAngle", tool.rotateAngle()},
        {"lastRotateAngle", tool.lastRotateAngle()},
        {"selected", tool.selected()},
        {"finalized", tool.finalized()},
        {"isNewBuild", tool.isNewBuild()},
        {"moveDirection", static_cast<unsigned>(tool.moveDirection())},
        {"frame", toJson(tool.frame())},
        {"measureText", measureText.empty() ? JsonValue() : JsonValue(measureText)},
    };
    for (const ToolDetail& detail : tool.details()) {
        const auto describe = [](const auto& value) { return describeDetail(value); };
        members.emplace_back(std::string(detail.name), std::visit(describe, detail.value));
    }
    if (!tool.groups().empty())
        members.emplace_back("groups",
                             JsonValue::Array(tool.groups().begin(), tool.groups().end()));
    if (tool.isLocked()) members.emplace_back("locked", true);
    const ToolPropertyValues chosen = tool.chosenProperties();
    if (chosen.empty()) return members;
    JsonValue::Object properties;
    for (const auto& [name, value] : chosen)
        properties.emplace_back(name,
                                std::visit([](const auto& v) { return JsonValue(v); }, value));
    members.emplace_back("properties", std::move(properties));
    return members;
}

// Indexes into the tools, in the order of selection; null for a member that is not among them.
JsonValue describeSelection(const MDrawView& canvas) {
    if (!canvas.hasSelectedTools()) return {};
    const ToolList& tools = canvas.tools();
    JsonValue::Array indexes;
    for (const ToolRef& member : canvas.handingTools()->subTools()) {
        const auto place = std::ranges::find(tools, member);
        indexes.push_back(place == tools.end() ? JsonValue() : JsonValue(place - tools.begin()));
    }
    return indexes;
}

}  // namespace

JsonValue::Object describeCanvas(const MDrawView& canvas) {
    JsonValue::Array tools;
    for (const ToolRef& tool : canvas.tools())
        tools.push_back(describeTool(*tool));
    JsonValue::Object print{
        {"tools", std::move(tools)},
        {"selection", describeSelection(canvas)},
        {"canUndo", canvas.canUndo()},
        {"canRedo", canvas.canRedo()},
        {"hasDrawed", canvas.hasDrawed()},
        {"ctxRect", toJson(canvas.ctxRect())},
        {"contextScale", canvas.contextScale()},
        {"editingText", canvas.curEdittingTextTool() != nullptr},
    };
    if (canvas.pictureCut() != PictureCut{})
        print.emplace_back("pictureCut", toJson(canvas.pictureCut()));
    return print;
}

}  // namespace kalim
