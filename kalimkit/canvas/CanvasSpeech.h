#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "kalimkit/canvas/ToolKeys.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/view/AccessibilityElement.h"

namespace kalim {

class CanvasFinger;
class CanvasHome;
class CanvasSelection;
class CanvasTools;
class CanvasTyping;

// What an assistive technology is told of a canvas, and does to it.
class CanvasSpeech {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        const CanvasTools& tools;
        CanvasSelection& selection;
        CanvasTyping& typing;
        const CanvasFinger& finger;
    };
    explicit CanvasSpeech(const Canvas& canvas) : _canvas(canvas) {}

    // See MDrawView::accessibilityElements() and activateAccessibilityElement().
    std::vector<ui::AccessibilityElement> elements();
    bool activate(std::uint64_t key);
    // What is told of one of them, and those that can be chosen, in the same order.
    std::string describe(const MDrawTool& tool) const;
    ToolList pickable() const;

private:
    bool isAnnounced(const MDrawTool& tool) const;
    gfx::Rect announcedFrame(MDrawTool& tool) const;

    Canvas _canvas;
    ToolKeys _keys;
};

}  // namespace kalim
