#include "kalimkit/host/headless/CanvasMake.h"

#include <string>
#include <vector>

#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/shapes/MDrawPolyline.h"
#include "kalimkit/shapes/MDrawText.h"

namespace kalim {

namespace {

Problem findClass(const JsonValue& step, const ToolClass*& found) {
    std::string name;
    if (Problem problem = readAs(*step.find("make"), "\"make\"", name)) return problem;
    found = toolClassNamed(name);
    if (found) return std::nullopt;
    std::vector<std::string_view> names;
    for (const ToolClass* toolClass : toolClasses())
        names.push_back(toolClass->name);
    return "there is no class of tools " + shownName(name) + suggestion(name, names);
}

Problem readPoints(const JsonValue& step, std::vector<gfx::Point>& points) {
    const JsonValue* list = step.find("points");
    if (!list) return "\"make\" needs \"points\"";
    if (Problem problem = readList(*list, "\"points\"", "point", points)) return problem;
    if (points.size() < 2) return "\"points\" must be two or more";
    return std::nullopt;
}

Problem readLook(const JsonValue& step, MDrawTool& tool, const MDrawView& canvas) {
    gfx::ColorRef color = canvas.color();
    double lineWidth = canvas.lineWidth();
    std::uint64_t drawType = canvas.drawType();
    if (Problem problem = readOwn(step, "color", color)) return problem;
    if (Problem problem = readOwn(step, "lineWidth", lineWidth)) return problem;
    if (Problem problem = readOwn(step, "drawType", drawType)) return problem;
    if (lineWidth < 0 || lineWidth > largestCoordinate) {
        return wrongValue("\"lineWidth\"", "from 0 to 1000000", lineWidth);
    }
    tool.setColor(color);
    tool.setLineWidth(lineWidth);
    tool.setDrawType(drawType);
    return std::nullopt;
}

bool isText(const MDrawTool& tool) {
    return tool.toolClass().isKindOf(MDrawText::Class());
}

// A text without words would be no tool.
Problem readText(const JsonValue& step, MDrawTool& tool) {
    const JsonValue* given = step.find("text");
    const std::string name(tool.toolClass().name);
    if (!isText(tool)) {
        return given ? Problem("a " + name + " has no \"text\"") : std::nullopt;
    }
    if (!given) return "a " + name + " needs \"text\"";
    std::string text;
    if (Problem problem = readAs(*given, "\"text\"", text)) return problem;
    static_cast<MDrawText&>(tool).setText(text);
    return std::nullopt;
}

// Vertices are set one by one as a finger lifts; a text keeps the box between the first point and
// the last; everything else follows the finger.
void drawThrough(const std::vector<gfx::Point>& points, MDrawTool& tool) {
    const bool isByVertex = tool.toolClass().isKindOf(MDrawPolyline::Class());
    for (std::size_t index = 1; index < points.size(); ++index) {
        if (isByVertex) {
            tool.drawUp(points[index]);
        } else if (!isText(tool)) {
            tool.drawMove(points[index]);
        }
    }
    if (isText(tool)) {
        tool.setEndPoint(points.back());
    } else if (!isByVertex) {
        tool.drawUp(points.back());
    }
}

}  // namespace

Problem makeTool(MDrawView& canvas, const JsonValue& step) {
    const ToolClass* toolClass = nullptr;
    std::vector<gfx::Point> points;
    if (Problem problem = findClass(step, toolClass)) return problem;
    if (Problem problem = readPoints(step, points)) return problem;
    const ToolRef tool = toolClass->makeWithStartPoint(points.front());
    if (Problem problem = readLook(step, *tool, canvas)) return problem;
    if (Problem problem = readText(step, *tool)) return problem;
    drawThrough(points, *tool);
    if (!tool->isDrawVaild()) {
        return "the points make no valid " + std::string(toolClass->name) +
               ": it is too small for its line, or has no length";
    }
    // A tool beyond the area budget is taken back with an alert, which the next print shows.
    canvas.addTool(tool);
    return std::nullopt;
}

}  // namespace kalim
