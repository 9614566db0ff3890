#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

class ShapeLayer;

// Shows shape layers, and hears of what they do by themselves.
class KALIM_API LayerOwner {
public:
    virtual ~LayerOwner() = default;

    // What the layer shows has changed, or is about to.
    virtual void layerDamaged(const ShapeLayer& layer) = 0;
    // A keyed animation of one of the layers has begun or ended.
    virtual void layerAnimationsChanged() = 0;
    // Another owner takes the layer.
    virtual void releaseLayer(ShapeLayer& layer) = 0;
};

}  // namespace kalim::ui
