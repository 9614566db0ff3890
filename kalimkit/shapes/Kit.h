#pragma once

#include <vector>

#include "kalimkit/tool/ToolClass.h"

namespace kalim {

// A kind of the kit and the number of its pen.
struct KitTool {
    unsigned pen;
    const ToolClass* kind;
};

// What the library brings along besides the kinds of kinds(): for how-to pictures and the desk.
std::vector<KitTool> kit();

}  // namespace kalim
