#pragma once

#include <array>
#include <functional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "kalimkit/canvas/CanvasLayers.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/tool/MDrawTool.h"

namespace kalim {

// Remembers where each tool was last drawn, and in which layer, so that a change redraws the tool's
// old place and its new one and nothing else. The selection and the tools being created rest in no
// layer: they are live, drawn at every frame that meets them. Places are canvas rectangles.
class KALIM_API DrawnTools {
public:
    // How to find the extent of a tool as drawn, its label included, and which layer it rests in.
    struct Rules {
        std::function<gfx::Rect(MDrawTool&)> extentOf;
        std::function<CanvasLayers::Layer(const MDrawTool&)> layerOf;
    };
    explicit DrawnTools(Rules rules) : _rules(std::move(rules)) {}

    // What to draw again, by layer and of the live tools.
    struct Stale {
        std::array<std::vector<gfx::Rect>, 2> layers;
        std::vector<gfx::Rect> live;
        // Has come to rest above all other items at this place: nothing but it needs drawing there.
        ToolRef onTop;
        gfx::Rect onTopExtent;
    };

    // ---- what has happened since the last update
    // A tool looks different; of a group, its members do.
    void markChanged(const ToolRef& tool);
    const ToolList& changed() const { return _changed; }
    // Tools came to the canvas or left it.
    void markListChanged() { _isListChanged = true; }
    // The selection or a tool being created looks different.
    void markLiveChanged() { _isLiveChanged = true; }
    // Every place is to be found anew; whoever says so draws everything.
    void forget();

    // Takes note of what there is now. `selection` may be null, `created` are the tools that are
    // still being created. The selection's tools rest in their layers where it is not live.
    Stale update(const ToolList& tools, const ToolRef& selection, const ToolList& created,
                 bool isSelectionLive = true);

    // Whether the tool rests in the layer and meets the rectangle.
    bool isDrawnIn(const MDrawTool& tool, CanvasLayers::Layer layer, const gfx::Rect& rect) const;

private:
    struct Place {
        // Kept, so that no new tool can be taken for one that has gone.
        ToolRef tool;
        CanvasLayers::Layer layer = CanvasLayers::Items;
        bool isLive = true;
        gfx::Rect extent;
    };

    void updateMembership(const ToolList& tools, Stale& stale);
    void updateLive(const ToolList& tools, ToolList live, Stale& stale);
    void updateLiveExtents(const ToolRef& selection, const ToolList& created, Stale& stale);
    gfx::Rect liveExtent(MDrawTool& tool, Stale& stale);
    void settle(Place& place, const ToolList& tools, Stale& stale) const;
    static void vacate(const Place& place, Stale& stale);

    Rules _rules;
    std::unordered_map<const MDrawTool*, Place> _places;
    ToolList _live;
    // Where the selection, as one, and each of the tools being created were drawn.
    std::unordered_map<const MDrawTool*, gfx::Rect> _liveExtents;
    ToolList _changed;
    bool _isListChanged = true;
    bool _isLiveChanged = true;
};

}  // namespace kalim
