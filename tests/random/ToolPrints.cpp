#include "tests/random/ToolPrints.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>

#include "kalimkit/host/headless/CanvasPrint.h"
#include "kalimkit/json/JsonText.h"
#include "kalimkit/shapes/MDrawRect.h"
#include "kalimkit/shapes/MDrawText.h"
#include "tests/scenarios/JsonMatch.h"

namespace kalim::test {

namespace {

bool isOneOf(std::string_view key, std::initializer_list<std::string_view> keys) {
    return std::ranges::find(keys, key) != keys.end();
}

// Whether undo brings it back: no snapshot has how a finger holds the tool, and what is measured.
bool isKept(const MDrawTool& tool, std::string_view key, bool isForgiving) {
    if (isOneOf(key, {"selected", "finalized", "moveDirection", "isNewBuild", "lastRotateAngle",
                      "measureText"})) {
        return false;
    }
    const bool isText = tool.toolClass().isKindOf(MDrawText::Class());
    // Hit tests may put the corners of a box in order; its frame says the same.
    const bool isBox = tool.toolClass().isKindOf(MDrawRect::Class());
    if (isBox && isOneOf(key, {"startPoint", "endPoint"})) return false;
    if (isForgiving) return true;
    // Drawing fits a text's box and font to each other, after the record, and vertices are in no
    // snapshot.
    if (isText) return !isOneOf(key, {"frame", "fontSize", "lineWidth"});
    return key != "points" && (isBox || key != "frame");
}

}  // namespace

ToolPrints printsOf(const MDrawView& canvas, const std::set<ToolRef>& exempt) {
    JsonValue described = *JsonValue(describeCanvas(canvas)).find("tools");
    JsonValue::Array& printed = *described.array();
    ToolPrints prints;
    for (std::size_t index = 0; index < printed.size(); ++index) {
        const ToolRef& tool = canvas.tools()[index];
        std::erase_if(*printed[index].object(), [&](const JsonValue::Member& member) {
            return !isKept(*tool, member.first, canvas.forgiving());
        });
        prints.push_back({tool, std::nullopt});
        if (!exempt.contains(tool)) prints.back().print = dumpJson(printed[index]);
    }
    if (!canvas.forgiving()) std::ranges::sort(prints, {}, &ToolPrint::tool);
    return prints;
}

std::optional<std::string> printOf(const ToolPrints& prints, const ToolRef& tool) {
    const auto found = std::ranges::find(prints, tool, &ToolPrint::tool);
    return found == prints.end() ? std::nullopt : found->print;
}

std::optional<std::string> differenceOf(const ToolPrints& then, const ToolPrints& now,
                                        const std::set<ToolRef>& unknown) {
    const auto toolsOf = [&](const ToolPrints& prints) {
        std::string names;
        for (const ToolPrint& each : prints)
            if (!unknown.contains(each.tool)) names += " " + each.tool->name();
        return names;
    };
    if (toolsOf(then) != toolsOf(now)) return toolsOf(now) + " instead of" + toolsOf(then);
    for (const ToolPrint& each : then) {
        const std::optional<std::string> print = printOf(now, each.tool);
        if (unknown.contains(each.tool) || !each.print || !print) continue;
        const std::string difference = differenceOfJson(*each.print, *print);
        if (!difference.empty()) return each.tool->name() + ": " + difference;
    }
    return std::nullopt;
}

}  // namespace kalim::test
