#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "kalimkit/document/Document.h"
#include "kalimkit/document/DocumentPlace.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// ---- tools and values

// What makes the tool.
KALIM_API DocumentTool describeTool(const MDrawTool& tool);
// Has the tool become what is described, but for its class; its history is left alone.
KALIM_API void takeDescription(MDrawTool& tool, const DocumentTool& described);
// Makes a finished tool without a history. `prepare` gives it what all tools of its canvas share,
// before it becomes what is described. Of a class that is not known it is a placeholder, which
// knows what it stands for.
KALIM_API ToolRef makeTool(const DocumentTool& described,
                           const std::function<void(MDrawTool&)>& prepare);

// ---- values and JSON

// Which number stands for which colour object. The colours live as long as the numbers.
class KALIM_API ColorNumbers {
public:
    // The number of the object, a new one where it has none; nothing for no colour.
    std::optional<std::int64_t> numberOf(const gfx::ColorRef& color);
    // The object of a number, as somebody wrote it; `color` becomes it where it has none. Another
    // colour than that is a mistake: null.
    gfx::ColorRef colorOf(std::int64_t number, const gfx::ColorRef& color);

private:
    std::map<gfx::ColorRef, std::int64_t> _numbers;
    std::map<std::int64_t, gfx::ColorRef> _colors;
};

// The members of a tool's entry. A colour gets a number where `isShared` says so.
KALIM_API JsonValue::Object entryOf(const DocumentTool& tool, ColorNumbers& colors,
                                    const std::function<bool(const gfx::ColorRef&)>& isShared);
KALIM_API DocumentTool readEntry(DocumentPlace& place, ColorNumbers& colors);

}  // namespace kalim
