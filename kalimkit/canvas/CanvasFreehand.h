#pragma once

#include <memory>

#include "kalimkit/shapes/MDrawFreeLineHelper.h"

namespace kalim {

class CanvasFinger;
class CanvasHome;
class CanvasTools;

// The freehand drawing of a canvas that may still get more strokes.
class CanvasFreehand : public MDrawFreeLineHelperDelegate {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasHome& home;
        CanvasTools& tools;
        const CanvasFinger& finger;
    };
    explicit CanvasFreehand(const Canvas& canvas);
    // Once the view can be held.
    void listen();

    // ---- a stroke
    // The drawing that a stroke beginning there belongs to.
    std::shared_ptr<MDrawFreeline> drawingAt(gfx::Point p, const ToolClass& kind);
    void endStroke() { _helper->drawPause(); }
    // Whether a drawing waits that has one stroke so far.
    bool isFirstStrokeWaiting() const;

    // ---- the drawing
    // Whether there is one, with or without a finger on it.
    bool isUnderWay() const { return _helper->isFreelineDrawing(); }
    // Whether it holds finished strokes, and counts as a step.
    bool isWaiting() const;
    // It stays as a step of its own.
    void end();
    // The same for one that waits, but a stroke under way goes on.
    void endWaiting();
    // The same where the present pen would not join it.
    void endOfOtherPen();
    // Nothing of it has a record.
    void drop() { _helper->reset(); }

    // ---- from the helper
    void drawFreelineComplate(const std::shared_ptr<MDrawFreeline>& freeline) override;
    void drawFreelinePropertyChanged(const std::shared_ptr<MDrawFreeline>& freeline) override;

private:
    Canvas _canvas;
    std::shared_ptr<MDrawFreeLineHelper> _helper;
};

}  // namespace kalim
