#pragma once

#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Polygon.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// The tools of a canvas whose look is tied to more than themselves, so that other places have to be
// drawn again than their own: those that shade it, those that show a place of its ground once more,
// and those that blend with what lies under them. Most canvases have none, and look for them only
// when tools have come or gone. Canvas points.
class KALIM_API TiedTools {
public:
    void markListChanged() { _isListChanged = true; }
    // The ground looks different there.
    void markGround(const gfx::Rect& rect);
    // Finds them again, if tools have come or gone.
    void update(const ToolList& tools);

    // Whether one blends with what lies under it.
    bool blends() const { return _blends; }
    bool hasShade() const { return !_shades.empty(); }
    // What the shade has changed since it was asked last; `everything` may lie in the shade.
    std::vector<gfx::Rect> takeShadeChanges(const gfx::Rect& everything);
    // Those that show again what has changed of the ground since.
    ToolList takeRepeaters();

private:
    struct Shade {
        double dark = 0;
        std::vector<gfx::Polygon> areas;
    };

    Shade shade() const;

    bool _isListChanged = true;
    bool _blends = false;
    ToolList _shades;
    ToolList _repeaters;
    std::vector<gfx::Rect> _changedGround;
    // As it was drawn last.
    Shade _seen;
};

}  // namespace kalim
