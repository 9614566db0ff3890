#pragma once

#include <memory>
#include <string_view>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

class MDrawTool;

// The identity of a class of tools at run time: its name, its base and how one is made. There is
// one object per class, compared by address.
struct KALIM_API ToolClass {
    std::string_view name;
    const ToolClass* base = nullptr;
    // Makes an initialised tool at a canvas point; null for classes that nobody makes by points.
    std::shared_ptr<MDrawTool> (*makeWithStartPoint)(gfx::Point start) = nullptr;

    // True for the class itself and for everything derived from it.
    bool isKindOf(const ToolClass& other) const {
        for (const ToolClass* current = this; current; current = current->base) {
            if (current == &other) return true;
        }
        return false;
    }
};

}  // namespace kalim
