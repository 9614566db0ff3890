#pragma once

#include <cstdint>
#include <optional>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// What the owner of a canvas hears from it. Every message is optional. The canvas holds its
// delegate weakly, and holds itself alive until a message returns.
class KALIM_API MDrawViewDelegate {
public:
    virtual ~MDrawViewDelegate() = default;

    // At every touch-down.
    virtual void didDrawStarted() {}
    // After any change of the selection: whether something is selected.
    virtual void seletedToolsStateChanged(bool /*hasSelection*/) {}
    // Beside it: the tool-type number, colour and line width (points) of the first selected tool;
    // -1, null and 0 when nothing is selected.
    virtual void currentSelectedToolsPropertyChangedColorLineWidth(std::int64_t /*type*/,
                                                                   const gfx::ColorRef& /*color*/,
                                                                   double /*lineWidth*/) {}
    // While a finger draws or drags something, what that covers of the canvas's view, view points;
    // nothing once the finger is done with it.
    virtual void didDrawOver(const std::optional<gfx::Rect>& /*viewRect*/) {}
    virtual void canUndoStateChangedCanRedo(bool /*canUndo*/, bool /*canRedo*/) {}
    // A text begins or ends to be typed.
    virtual void textToolEditing(bool /*isEditing*/) {}
    // Two fingers begin to pinch or pan the canvas, and the last of both gestures is over.
    virtual void didCanvasScaleAndPanStart() {}
    virtual void didCanvasScaleAndPanEnd() {}
    // The canvas is about to show something else than before: another zoom, a shape that grows,
    // another look of what is selected. At most once a frame, for owners that show readings of it.
    virtual void canvasWillShow() {}
    // Whether the owner's bar lies under the canvas, and how many points of it the bar covers; no
    // answer stands for a canvas without a bar.
    virtual std::optional<bool> isToolbarPlaceBottom() { return std::nullopt; }
    virtual std::optional<double> toolbarHeight() { return std::nullopt; }
    // Whether the canvas may open a menu over itself for what has no button. A canvas alone leaves
    // that to its host.
    virtual bool opensMenus() { return false; }
};

}  // namespace kalim
