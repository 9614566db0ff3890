#pragma once

#include <cstddef>
#include <map>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// Remembers where tools lay in a list that they have left, so that they come back there.
class KALIM_API ToolPlaces {
public:
    // Takes those out that are in the list.
    void takeOut(ToolList& list, const ToolList& leaving);
    // Each comes to the place that it left last, however the others are ordered here, if the list
    // is otherwise as it was then; those that never left come to the end.
    void putBack(ToolList& list, ToolList returning);

private:
    std::map<ToolRef, std::size_t> _places;
};

}  // namespace kalim
