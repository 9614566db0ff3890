#pragma once

#include <optional>
#include <vector>

#include "kalimkit/canvas/CanvasMosaic.h"
#include "kalimkit/canvas/CanvasPicture.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/PixelRect.h"
#include "kalimkit/image/HiddenRegion.h"
#include "kalimkit/image/MosaicBlocks.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

struct CanvasShown;

// What sealed and solid patches hide for certain: which pixels of the picture, what is seen there,
// and a copy of the picture that does not have them any more, from which all is drawn that leaves
// the canvas.
class CanvasHiding {
public:
    // What of the canvas it uses.
    struct Canvas {
        const ToolList& tools;
        CanvasShown& shown;
    };
    explicit CanvasHiding(const Canvas& canvas) : _canvas(canvas) {}

    // Finds out what the patches hide by now.
    void refresh();
    // The same for the screen; answers with what looks different there, canvas points.
    std::vector<gfx::Rect> update();
    // Pixels of the picture as it was handed in, upright. As of the last refresh.
    gfx::PixelRects hidden() const;

    // ---- drawing, as of the last refresh
    // What the patch covers, canvas points: whole pixels of the picture, and all that its file
    // holds together with them, by rows of these where it is turned. Nothing for a tool that hides
    // nothing for certain; empty beside the picture.
    std::optional<std::vector<gfx::Rect>> coveredBy(const MDrawTool& patch) const;
    // What fills such a patch.
    gfx::Paint fill(const MDrawTool& patch);
    // How far a patch covers more than its frame at most, canvas points; 0 where none does.
    double reach() const;

    // ---- what leaves the canvas
    enum class Copies {
        // The picture as it was handed in is all that is drawn.
        None,
        // Smaller ones are drawn, too.
        All
    };
    // Not where nothing is hidden, or somebody else has begun.
    enum class Begun { No, Yes, Failed };
    // While one lives, the canvas shows the copy of the picture that has nothing of what is hidden.
    class Burn {
    public:
        Burn(CanvasHiding& hiding, Copies copies) : _hiding(hiding), _begun(hiding.begin(copies)) {}
        ~Burn() {
            if (_begun == Begun::Yes) _hiding.end();
        }
        // There is no room for the copy: nothing may be handed out.
        bool hasFailed() const { return _begun == Begun::Failed; }
        Burn(const Burn&) = delete;
        Burn& operator=(const Burn&) = delete;

    private:
        CanvasHiding& _hiding;
        Begun _begun;
    };
    bool isBurning() const { return _isBurning; }
    // The blocks of the copy that is shown instead.
    const CanvasMosaic& mosaic() const { return _mosaic; }
    // Gives the memory of the copy back.
    void release();

private:
    struct Patch {
        const MDrawTool* tool;
        HiddenRegion region;

        bool operator==(const Patch&) const = default;
    };

    std::vector<Patch> patches() const;
    gfx::Rect onCanvas(const gfx::PixelRect& pixels) const;
    const Patch* patchOf(const MDrawTool& tool) const;
    const gfx::Bitmap& sealed();
    const gfx::Bitmap& pixels();
    Begun begin(Copies copies);
    void end();

    Canvas _canvas;
    // As of the last refresh; `_level` is the side of a sealed block, pixels of the picture.
    std::vector<Patch> _patches;
    gfx::ImageRef _source;
    int _level = 0;
    // Those that the screen shows.
    std::vector<Patch> _seen;
    // The picture's own pixels, kept as long as something is hidden.
    gfx::BitmapRef _pixels;
    // Made when they are first asked for.
    std::optional<gfx::Bitmap> _sealed;
    MosaicBlocks _blocks;
    // The picture without what is hidden, as the canvas shows it; null source before.
    gfx::ImageRef _burnt;
    CanvasPicture _picture;
    CanvasMosaic _mosaic;
    bool _isBurning = false;
};

}  // namespace kalim
