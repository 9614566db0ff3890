#pragma once

#include <optional>
#include <vector>

#include "kalimkit/canvas/CanvasLayers.h"
#include "kalimkit/canvas/DrawnTools.h"
#include "kalimkit/canvas/FrameCount.h"
#include "kalimkit/canvas/PatchRim.h"
#include "kalimkit/canvas/Snapping.h"
#include "kalimkit/canvas/TiedTools.h"

namespace kalim::ui {
class View;
}

namespace kalim {

class CanvasPainter;
class CanvasSelection;
class CanvasTools;
struct CanvasShown;

// What of a canvas is on the screen: it finds out what has changed, and draws that alone.
class CanvasScreen {
public:
    // What of the canvas it uses.
    struct Canvas {
        ui::View& view;
        CanvasShown& shown;
        CanvasTools& tools;
        CanvasPainter& painter;
        CanvasSelection& selection;
    };
    explicit CanvasScreen(const Canvas& canvas);

    // ---- what has changed
    // The selection and what is being created may look different.
    void redisplay();
    // Everything is drawn anew at the next frame.
    void invalidate();
    // Does the same for the background in a canvas rectangle.
    void invalidateGround(const gfx::Rect& rect);
    void markListChanged();
    void markChanged(const ToolRef& tool) { _drawn.markChanged(tool); }
    // A finger has begun to make the tool, or nothing is being made any more.
    void markCreated(const ToolRef& tool);
    void forgetCreated() { _created.clear(); }
    // Thin lines over everything, and the rectangle that a finger spans to pick what it meets.
    void showGuides(std::vector<SnapGuide> guides);
    void showMarquee(const std::optional<gfx::Rect>& marquee);
    // The handle that a pointer is over, canvas points.
    void lightHandle(const std::optional<gfx::Point>& handle);
    // Gives the memory back that only a screen needs.
    void release() { _layers.release(); }

    // Finds out what has to be drawn again, in the layers and on the screen.
    void update();

    // ---- drawing
    // The frame that the view has begun, view coordinates.
    void draw(gfx::Context& context);
    // The same once more in that frame, wherever else.
    void drawAgain(gfx::Context& context);
    // What lies over the picture, which has been drawn, without selection or handles.
    void drawExported(gfx::Context& context, const DrawnPicture& picture);
    // See MDrawView::lastDrawnTools().
    int drawnTools() const { return _count.tools(); }

private:
    void mark(const gfx::Rect& canvasRect);
    void updateLayersView();
    void markStale(const DrawnTools::Stale& stale);
    void updateTied();
    void markGround(const gfx::Rect& rect);
    void markTied();
    void drawOnTop(const DrawnTools::Stale& stale);
    void sweepChangedTools();
    gfx::Rect extentOf(MDrawTool& tool) const;
    bool hasLivePatch() const;
    ToolRef selection() const;
    const ToolList& createdTools();
    bool refreshLayers();
    bool keepsItems() const { return !_tied.blends(); }

    void drawView(gfx::Context& context, bool hasLayers);
    void paintGround(gfx::Context& context, const gfx::Rect& rect);
    void drawShade(gfx::Context& context);
    void paintItems(gfx::Context& context, const gfx::Rect& rect);
    bool isResting(const MDrawTool& patch) const;
    void drawTool(gfx::Context& context, MDrawTool& tool);
    void drawUnselected(gfx::Context& context, MDrawTool& tool);
    void noteResting();
    void drawRestingItems(gfx::Context& context);
    void drawCreatedItems(gfx::Context& context);
    void drawLivePatches(gfx::Context& context);
    void drawSelection(gfx::Context& context, bool showsHandles);
    // ---- what lies over everything (CanvasScreenOverlay.cpp)
    void markOverlay();
    void drawOverlay(gfx::Context& context) const;
    // A line of the screen, in canvas points.
    double hairline() const;
    gfx::Rect litDisc() const;

    Canvas _canvas;
    CanvasLayers _layers;
    DrawnTools _drawn;
    TiedTools _tied;
    // Those made by a finger and not finished yet; brought up to date when asked for.
    ToolList _created;
    FrameCount _count;
    // The layers show all that is on the way from one cut of the picture to another.
    bool _showsOverview = false;
    // As of the last update: a patch is selected, and what lies under a tool that blends is drawn
    // anew in every frame instead of being kept.
    bool _hasLivePatch = false;
    bool _drawsItemsAnew = false;
    // Selected and in their layers, as of the last update.
    ToolList _resting;
    std::vector<SnapGuide> _guides;
    std::optional<gfx::Rect> _marquee;
    std::optional<gfx::Point> _litHandle;
};

}  // namespace kalim
