#pragma once

#include <memory>
#include <string>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

class CanvasArrangement;
class CanvasFinger;
class CanvasHome;
class CanvasSelection;
class CanvasSpeech;
class CanvasTools;
class MDrawMutableSelect;

// What keys do on a canvas for those who use no pointer, and what an assistive technology says of
// it (ui::Environment::announce). Each operation answers whether there was something to do.
class KALIM_API CanvasByKeys {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasTools& tools;
        CanvasSelection& selection;
        CanvasFinger& finger;
        CanvasArrangement& arrangement;
        CanvasSpeech& speech;
    };
    explicit CanvasByKeys(const Canvas& canvas) : _canvas(canvas) {}
    CanvasByKeys(const CanvasByKeys&) = delete;
    CanvasByKeys& operator=(const CanvasByKeys&) = delete;

    // Selects the next shape in the drawing order, or the one before. Past the last nothing is
    // selected, and the key is for what comes after the canvas.
    bool selectNext(bool forwards);
    // As CanvasArrangement has them; what comes within a second of the one before is the same step.
    bool nudge(gfx::Point offset);
    bool resize(gfx::Point growth);
    // Radians clockwise.
    bool turn(double angle);
    // Draws the shape of the pen in hand in the middle of what is seen, and selects it; a text is
    // typed from then on.
    bool make();

    // What the keys have selected last, if anything; it may be selected no longer.
    const std::weak_ptr<MDrawMutableSelect>& chosen() const { return _chosen; }

private:
    void choose(const ToolRef& tool);
    gfx::Rect placeOfNew() const;
    void say(const std::string& what) const;

    Canvas _canvas;
    std::weak_ptr<MDrawMutableSelect> _chosen;
};

}  // namespace kalim
