#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"
#include "kalimkit/tool/ToolPlaces.h"

namespace kalim {

// Counts the tools of kinds that count (ToolRow::isCounted), each series by itself, in the order in
// which they came to the canvas, whichever lies above. One that comes back after an undo has its
// old place among them.
class KALIM_API CountedTools {
public:
    // Brings the counts up to the tools that there are; answers with those whose count has changed.
    // New ones that come together follow each other by the counts that they bring along.
    ToolList recount(const ToolList& tools);
    // Nothing that has left comes back.
    void forget();

private:
    ToolList _order;
    ToolPlaces _places;
};

}  // namespace kalim
