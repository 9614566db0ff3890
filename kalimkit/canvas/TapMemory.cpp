#include "kalimkit/canvas/TapMemory.h"

#include "kalimkit/shapes/MDrawText.h"

namespace kalim {

namespace {

// Seconds within which a second tap on a text edits it; the last moment counts.
constexpr double secondTapTime = 1.0;

}  // namespace

void TapMemory::remember(const ToolRef& tool, double time) {
    _text = tool && tool->toolClass().isKindOf(MDrawText::Class()) ? tool : nullptr;
    _time = time;
}

bool TapMemory::isSecondTap(const ToolRef& tool, double time) const {
    return tool && tool == _text && time - _time <= secondTapTime;
}

}  // namespace kalim
