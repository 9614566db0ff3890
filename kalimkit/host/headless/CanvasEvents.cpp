#include "kalimkit/host/headless/CanvasEvents.h"

#include <utility>

#include "kalimkit/host/headless/ScenarioValues.h"

namespace kalim {

JsonValue::Array CanvasEvents::take() {
    return std::exchange(_events, {});
}

void CanvasEvents::didDrawStarted() {
    _events.push_back(JsonValue::Array{"didDrawStarted"});
}

void CanvasEvents::seletedToolsStateChanged(bool hasSelection) {
    _events.push_back(JsonValue::Array{"seletedToolsStateChanged", hasSelection});
}

void CanvasEvents::currentSelectedToolsPropertyChangedColorLineWidth(std::int64_t type,
                                                                     const gfx::ColorRef& color,
                                                                     double lineWidth) {
    _events.push_back(JsonValue::Array{"currentSelectedToolsPropertyChangedColorLineWidth", type,
                                       toJson(color), lineWidth});
}

void CanvasEvents::canUndoStateChangedCanRedo(bool canUndo, bool canRedo) {
    _events.push_back(JsonValue::Array{"canUndoStateChangedCanRedo", canUndo, canRedo});
}

}  // namespace kalim
