#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// The text that was tapped last, and when; a second tap soon after edits it. Seconds of the wall
// clock.
class KALIM_API TapMemory {
public:
    // Anything but a text is forgotten at once.
    void remember(const ToolRef& tool, double time);
    void forget() { _text = nullptr; }
    bool isSecondTap(const ToolRef& tool, double time) const;

private:
    ToolRef _text;
    double _time = 0;
};

}  // namespace kalim
