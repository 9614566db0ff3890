#include "kalimkit/host/headless/CanvasPrint.h"

#include <algorithm>
#include <string>
#include <vector>

#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/shapes/MDrawFreeline.h"
#include "kalimkit/shapes/MDrawPolyline.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim {

namespace {

JsonValue describePoints(const std::vector<gfx::Point>& points) {
    JsonValue::Array list;
    for (const gfx::Point p : points)
        list.push_back(toJson(p));
    return list;
}

// What only some kinds have.
void describeKind(const MDrawTool& tool, JsonValue::Object& members) {
    if (tool.toolClass().isKindOf(MDrawFreeline::Class())) {
        JsonValue::Array strokes;
        for (const auto& stroke : static_cast<const MDrawFreeline&>(tool).linePoints())
            strokes.push_back(describePoints(stroke));
        members.emplace_back("linePoints", std::move(strokes));
    } else if (tool.toolClass().isKindOf(MDrawPolyline::Class())) {
        members.emplace_back("points",
                             describePoints(static_cast<const MDrawPolyline&>(tool).points()));
    } else if (tool.toolClass().isKindOf(MDrawText::Class())) {
        const auto& text = static_cast<const MDrawText&>(tool);
        members.emplace_back("text", text.text());
        members.emplace_back("fontSize", text.fontSize());
    }
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
    describeKind(tool, members);
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
    return {
        {"tools", std::move(tools)},
        {"selection", describeSelection(canvas)},
        {"canUndo", canvas.canUndo()},
        {"canRedo", canvas.canRedo()},
        {"hasDrawed", canvas.hasDrawed()},
        {"ctxRect", toJson(canvas.ctxRect())},
        {"contextScale", canvas.contextScale()},
        {"editingText", canvas.curEdittingTextTool() != nullptr},
    };
}

}  // namespace kalim
