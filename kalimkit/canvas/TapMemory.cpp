#include "kalimkit/canvas/TapMemory.h"

namespace kalim {

namespace {

// Seconds within which a second tap on a text edits it; the last moment counts.
constexpr double secondTapTime = 1.0;

}  // namespace

void TapMemory::remember(const ToolRef& tool, double time) {
    const bool isTyped = tool && tool->toolClass().recorder() == ToolRecorder::Typing;
    _text = isTyped ? tool : nullptr;
    _time = time;
}

bool TapMemory::isSecondTap(const ToolRef& tool, double time) const {
    return tool && tool == _text && time - _time <= secondTapTime;
}

}  // namespace kalim
