#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

class ScrollView;
class View;

// What a scroll view asks and tells. It may be taken away within any of these.
class KALIM_API ScrollViewDelegate {
public:
    virtual ~ScrollViewDelegate() = default;

    // The subview that a pinch scales; null where there is nothing to zoom.
    virtual std::shared_ptr<View> viewForZoomingInScrollView(ScrollView& /*view*/) { return {}; }
    // These tell of every change of the offset, and of every change of the scale.
    virtual void scrollViewDidScroll(ScrollView& /*view*/) {}
    virtual void scrollViewDidZoom(ScrollView& /*view*/) {}

    virtual void scrollViewWillBeginDragging(ScrollView& /*view*/) {}
    // Whether the content goes on moving by itself.
    virtual void scrollViewDidEndDragging(ScrollView& /*view*/, bool /*willDecelerate*/) {}
    virtual void scrollViewDidEndDecelerating(ScrollView& /*view*/) {}
    // What setContentOffset(), setZoomScale() or zoomToRect() began has arrived.
    virtual void scrollViewDidEndScrollingAnimation(ScrollView& /*view*/) {}

    virtual void scrollViewWillBeginZooming(ScrollView& /*view*/) {}
    // After the scale is back between its limits.
    virtual void scrollViewDidEndZooming(ScrollView& /*view*/, double /*scale*/) {}
};

}  // namespace kalim::ui
