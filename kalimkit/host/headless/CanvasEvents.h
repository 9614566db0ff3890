#pragma once

#include "kalimkit/canvas/view/MDrawViewDelegate.h"
#include "kalimkit/host/headless/JsonValue.h"

namespace kalim {

// Writes down what a canvas tells its delegate, each message as ["name", argument...].
class CanvasEvents : public MDrawViewDelegate {
public:
    // The messages since the last call, oldest first.
    JsonValue::Array take();

    void didDrawStarted() override;
    void seletedToolsStateChanged(bool hasSelection) override;
    void currentSelectedToolsPropertyChangedColorLineWidth(std::int64_t type,
                                                           const gfx::ColorRef& color,
                                                           double lineWidth) override;
    void canUndoStateChangedCanRedo(bool canUndo, bool canRedo) override;

private:
    JsonValue::Array _events;
};

}  // namespace kalim
