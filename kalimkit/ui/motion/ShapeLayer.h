#pragma once

#include <string>
#include <vector>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Color.h"
#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/motion/LayerAnimations.h"

namespace kalim::ui {

class LayerOwner;

// A path that a view draws over its own content and that moves by animations of its own. What is
// set are final values; keyed animations change what is shown while they run. It belongs to one
// view at a time, and every change marks what it shows there. Values that are not finite are
// ignored.
class KALIM_API ShapeLayer {
public:
    ShapeLayer() = default;
    ShapeLayer(const ShapeLayer&) = delete;
    ShapeLayer& operator=(const ShapeLayer&) = delete;

    // ---- animations. They run from the moment of adding, and are shown while the layer's view is
    // in a window; when the view leaves, they end.
    void addAnimation(const LayerAnimation& animation, std::string key);
    void removeAnimation(const std::string& key);
    void removeAllAnimations();
    // Of those that run at this moment.
    std::vector<std::string> animationKeys() const;
    bool isAnimating() const;

    // ---- drawing, in the coordinates of its view
    void draw(gfx::Context& context) const;
    // Yields the path as it is shown.
    gfx::Path shownOutline() const;
    // All that it shows; empty where nothing is drawn.
    gfx::Rect extent() const;

    // ---- shape
    // In own coordinates, whose origin is the frame's corner. It may reach beyond the frame.
    const gfx::Path& path() const { return _path; }
    void setPath(gfx::Path path);
    // In the coordinates of its view. Scale and Rotation are about its centre.
    const gfx::Rect& frame() const { return _frame; }
    void setFrame(const gfx::Rect& frame);
    bool isHidden() const { return _hidden; }
    void setHidden(bool hidden);

    // ---- paint. Null draws no fill, or no stroke; both are null at first.
    const gfx::ColorRef& fillColor() const { return _fillColor; }
    void setFillColor(gfx::ColorRef color);
    const gfx::ColorRef& strokeColor() const { return _strokeColor; }
    void setStrokeColor(gfx::ColorRef color);
    // Values beyond 0 to 1 are clamped.
    double opacity() const { return _opacity; }
    void setOpacity(double opacity);

    // ---- stroke
    double lineWidth() const { return _lineWidth; }
    void setLineWidth(double width);
    gfx::LineCap lineCap() const { return _lineCap; }
    void setLineCap(gfx::LineCap cap);
    gfx::LineJoin lineJoin() const { return _lineJoin; }
    void setLineJoin(gfx::LineJoin join);
    // The part of the path's length that is stroked, clamped to 0 to 1. Nothing is when the start
    // is not below the end.
    double strokeStart() const { return _strokeStart; }
    void setStrokeStart(double share);
    double strokeEnd() const { return _strokeEnd; }
    void setStrokeEnd(double share);

    // ---- for the owner: the view that it is in; null for none
    LayerOwner* owner() const { return _owner; }
    void setOwner(LayerOwner* owner) { _owner = owner; }
    void damage() const;
    // The time to show; false when no animation runs any more.
    bool advance(Time time);
    void leaveScreen();

private:
    template <typename Change>
    void change(Change make);
    void animationsChanged();

    gfx::AffineTransform toOwner() const;
    gfx::Path strokedPath() const;
    bool isFilled() const { return _fillColor && !_path.isEmpty(); }
    bool isStroked() const;
    double shownLineWidth() const { return _values.lineWidth.value_or(_lineWidth); }

    LayerOwner* _owner = nullptr;
    gfx::Path _path;
    gfx::Rect _frame;
    bool _hidden = false;
    gfx::ColorRef _fillColor;
    gfx::ColorRef _strokeColor;
    double _opacity = 1;
    double _lineWidth = 1;
    gfx::LineCap _lineCap = gfx::LineCap::Butt;
    gfx::LineJoin _lineJoin = gfx::LineJoin::Miter;
    double _strokeStart = 0;
    double _strokeEnd = 1;
    LayerAnimations _animations;
    // What the animations make of it in what is displayed.
    LayerValues _values;
};

}  // namespace kalim::ui
