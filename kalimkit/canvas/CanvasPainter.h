#pragma once

#include <functional>
#include <optional>

#include "kalimkit/canvas/CanvasHiding.h"
#include "kalimkit/canvas/CanvasMosaic.h"
#include "kalimkit/canvas/PatchRim.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

class CanvasContent;
struct CanvasShown;

// How a canvas's picture and tools are drawn, on the screen and for an export; user space is the
// canvas's.
class CanvasPainter {
public:
    // What of the canvas it uses.
    struct Canvas {
        const ToolList& tools;
        CanvasShown& shown;
        const CanvasContent& content;
    };
    explicit CanvasPainter(const Canvas& canvas);

    // Under the picture and where drawings reach beyond it.
    const gfx::ColorRef& background() const { return _background; }
    void setBackground(gfx::ColorRef color) { _background = std::move(color); }
    void fillBackground(gfx::Context& context, const gfx::Rect& rect) const;
    // The blocks that patches show are those of the present picture from now on.
    void takeMosaic();
    // What sealed and solid patches hide.
    CanvasHiding& hiding() { return _hiding; }

    // ---- the picture
    // As it is drawn: which copy, and where on the canvas.
    struct ShownPicture {
        gfx::ImageRef image;
        gfx::Rect rect;
        gfx::Interpolation interpolation = gfx::Interpolation::High;
    };
    ShownPicture pictureToShow(const gfx::Context& context);
    // Where a copy of the picture is shown.
    gfx::Rect placeOf(const gfx::ImageRef& image, const gfx::Context& context) const;
    DrawnPicture drawnPicture(const ShownPicture& picture, const gfx::Rect& ground) const;

    // ---- tools
    void drawTool(gfx::Context& context, MDrawTool& tool);
    // What all tools of the shade together make of a canvas rectangle; nothing without any.
    void drawShade(gfx::Context& context, const gfx::Rect& rect) const;
    using PatchTest = std::function<bool(const MDrawTool&)>;
    // The patches that are wanted, over the picture; others may rest in the ground already.
    void drawPatches(gfx::Context& context, const DrawnPicture& picture, const PatchTest& isWanted,
                     const PatchTest& isResting);
    // Where what is drawn is to be cut; nothing where it is not to be. Between two cuts of the
    // picture it is all that is shown on the way.
    std::optional<gfx::Rect> pictureEdge(const gfx::Context& context) const;
    // How far the patches change what is seen of the picture beside them at most, canvas points.
    double rimOnScreen() const;

private:
    // For tools that show a place of it once more.
    class Ground : public ToolGround {
    public:
        explicit Ground(CanvasPainter& painter) : _painter(painter) {}
        void draw(gfx::Context& context, const gfx::Rect& part) override;

    private:
        CanvasPainter& _painter;
    };

    gfx::Rect shownPlace(const gfx::Context& context) const;
    std::vector<gfx::Rect> rimSidesOf(const MDrawTool& patch, const gfx::AffineTransform& along,
                                      const gfx::Rect& picture, double width) const;
    void drawPatch(gfx::Context& context, MDrawTool& patch, const gfx::AffineTransform& along);

    Canvas _canvas;
    CanvasMosaic _mosaic;
    CanvasHiding _hiding;
    gfx::ColorRef _background;
};

}  // namespace kalim
