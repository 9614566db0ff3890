#pragma once

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "kalimkit/canvas/MDrawView.h"

namespace kalim::test {

// What one tool looks like; nothing is printed of a tool that need not come back as it is.
struct ToolPrint {
    ToolRef tool;
    std::optional<std::string> print;
};
using ToolPrints = std::vector<ToolPrint>;

// What undo and redo bring back of every tool, in the order that they keep: by themselves tools
// come back on top.
ToolPrints printsOf(const MDrawView& canvas, const std::set<ToolRef>& exempt = {});

// The print of one tool among these; nothing while it is not there.
std::optional<std::string> printOf(const ToolPrints& prints, const ToolRef& tool);

// What differs, one sentence, but of the tools whose whereabouts are `unknown`.
std::optional<std::string> differenceOf(const ToolPrints& then, const ToolPrints& now,
                                        const std::set<ToolRef>& unknown);

}  // namespace kalim::test
