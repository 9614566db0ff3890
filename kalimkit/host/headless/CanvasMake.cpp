#include "kalimkit/host/headless/CanvasMake.h"

#include <span>
#include <string>
#include <vector>

#include "kalimkit/canvas/ToolClasses.h"
#include "kalimkit/shapes/ToolRegistry.h"

namespace kalim {

namespace {

Problem findClass(const JsonValue& step, const ToolClass*& found) {
    std::string name;
    if (Problem problem = readAs(*step.find("make"), "\"make\"", name)) return problem;
    found = toolClassNamed(name);
    if (found) return std::nullopt;
    std::vector<std::string_view> names;
    for (const ToolClass* kind : ToolRegistry::current().kinds())
        names.push_back(kind->name);
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

// A text without words would be no tool.
Problem readText(const JsonValue& step, MDrawTool& tool) {
    const JsonValue* given = step.find("text");
    const std::string name(tool.toolClass().name);
    if (!tool.words()) {
        return given ? Problem("a " + name + " has no \"text\"") : std::nullopt;
    }
    if (!given) return "a " + name + " needs \"text\"";
    std::string text;
    if (Problem problem = readAs(*given, "\"text\"", text)) return problem;
    tool.setWords(text);
    return std::nullopt;
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
    tool->drawThrough(std::span(points).subspan(1));
    if (!tool->isDrawVaild()) {
        return "the points make no valid " + std::string(toolClass->name) +
               ": it is too small for its line, or has no length";
    }
    // A tool beyond the area budget is taken back with an alert, which the next print shows.
    canvas.addTool(tool);
    return std::nullopt;
}

}  // namespace kalim
