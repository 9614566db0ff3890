#pragma once

#include <memory>

#include "bench/BenchHost.h"
#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::bench {

// A phone that shows a canvas of 390x844 points at scale 3 over a photo of 12 megapixels, drawn on
// by one finger. The tools are finished boxes on the photo: the first lies alone at the bottom, the
// last on top of the others in the middle, and the rest between them.
class CanvasStage {
public:
    // `side` is that of the box on top, in points.
    CanvasStage(int toolCount, double side);
    ~CanvasStage();
    CanvasStage(const CanvasStage&) = delete;
    CanvasStage& operator=(const CanvasStage&) = delete;

    MDrawView& canvas() { return *_canvas; }
    const ui::Window& window() const { return *_window; }

    // Each includes the frame that it leads to.
    void down(gfx::Point p);
    void move(gfx::Point p);
    void up();
    void undo();
    void redo();

    // Takes hold of the box on top.
    void grabBoxOnTop();
    // Moves by one step of a point, there and back over 60 points.
    void dragOn();
    // Whether the box on top is being moved as it is.
    bool isDragging() const;
    // Takes hold of the box at the bottom, under all others in the order of drawing.
    void pressLoneBox();
    void pullLoneBox();
    // The drag is undone and nothing is selected.
    void releaseLoneBox();

private:
    ToolRef addBox(const gfx::Rect& rect);
    void showFrame() { _window->display(); }

    BenchHost _host;
    std::unique_ptr<ui::Window> _window;
    std::shared_ptr<MDrawView> _canvas;
    ToolRef _onTop;
    gfx::Rect _topRect;
    gfx::Point _finger;
    int _step = 0;
};

}  // namespace kalim::bench
