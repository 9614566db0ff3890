#pragma once

#include <array>
#include <functional>
#include <memory>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/view/Damage.h"

namespace kalim {

// Pictures of the canvas in the view's device pixels, kept between frames so that a frame costs
// what changed: the ground (background, photo, finished mosaic patches) and, over it, the items
// (finished tools that are not selected). The canvas says what has become stale and draws it again
// when asked.
class KALIM_API CanvasLayers {
public:
    enum Layer : std::size_t { Ground, Items };
    // Draws a layer's content, canvas coordinates; `stale` is the part that will be kept.
    using Painter = std::function<void(gfx::Context& context, const gfx::Rect& stale)>;

    // Says what the layers are to show: a view of this size in points at this many pixels per
    // point, and how canvas points become view points. A change makes everything stale.
    void setView(gfx::Size size, double scale, const gfx::AffineTransform& toView);
    const gfx::AffineTransform& toView() const { return _toView; }

    void invalidateAll();
    // Canvas points; what is drawn there, edges smoothed into the next pixel included, is redone.
    void invalidate(Layer layer, const gfx::Rect& rect);
    bool isStale(Layer layer) const { return !_layers[layer].stale.isEmpty(); }

    // Has stale parts drawn anew, on cleared pixels. Whether the layer can be shown: false when the
    // device has no surface of its size.
    bool refresh(Layer layer, gfx::Device& device, const Painter& paint);
    // Draws over a layer that is otherwise up to date. Ignored while there is no such layer.
    void drawOver(Layer layer, const Painter& paint);
    // Shows a layer in view coordinates, through a further transform if one is given.
    void show(Layer layer, gfx::Context& context, const gfx::AffineTransform& further = {}) const;
    // Gives the memory back; everything is stale again.
    void release();

    // Where a canvas rectangle is seen: whole device pixels, view points, smoothed edges included.
    gfx::Rect shownRect(const gfx::Rect& canvasRect) const;

private:
    struct Kept {
        std::shared_ptr<gfx::Surface> surface;
        // It is in view points.
        ui::Damage stale;
    };

    gfx::Rect bounds() const { return {{}, _size}; }
    void repaint(Kept& layer, const gfx::Rect& rect, const Painter& paint) const;

    gfx::Size _size;
    double _scale = 1;
    gfx::AffineTransform _toView;
    std::array<Kept, 2> _layers;
};

}  // namespace kalim
