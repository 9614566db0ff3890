#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/ScrollMotion.h"
#include "kalimkit/ui/control/ScrollViewDelegate.h"
#include "kalimkit/ui/environment/EdgeInsets.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/PinchGestureRecognizer.h"
#include "kalimkit/ui/loop/DisplayLink.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

// A view onto content that may be larger than it is: a finger moves the content, and two fingers
// scale one of the subviews. Let go, the content goes on moving, slows down, and comes back from
// beyond its edges. Lengths are points.
//
// The offset is the origin of the bounds: the place in the content that the view's corner shows. It
// rests between -left and contentSize + right - the view's width, and likewise downwards.
class KALIM_API ScrollView : public View {
public:
    // Seconds of what was asked for with `animated`, and of the scale's way back between its
    // limits.
    static constexpr double animationDuration = 0.3;

    static std::shared_ptr<ScrollView> initWithFrame(const gfx::Rect& frame);

    // ---- place
    gfx::Point contentOffset() const { return bounds().origin; }
    // Taken as it is, even beyond the edges. Ends what moves the content.
    void setContentOffset(gfx::Point offset, bool animated = false);
    // In points of the present scale; zooming scales it along.
    gfx::Size contentSize() const { return _unscaledSize * _zoomScale; }
    void setContentSize(gfx::Size size);
    // How far the content may be moved beyond its edges to stay there.
    const EdgeInsets& contentInset() const { return _contentInset; }
    void setContentInset(const EdgeInsets& inset) { _contentInset = inset; }
    // Where the offset may rest.
    ScrollRange horizontalRange() const;
    ScrollRange verticalRange() const;

    // ---- scale of the subview that the delegate names. Its transform is that scale; its centre
    // moves with the content.
    double zoomScale() const { return _zoomScale; }
    // Brought between the limits; the middle of what is seen stays there as far as it can. Ignored
    // where there is nothing to zoom.
    void setZoomScale(double scale, bool animated = false);
    // Shows a rectangle of the zoomed subview's own coordinates as large as it fits, in the middle.
    void zoomToRect(const gfx::Rect& rect, bool animated = false);
    double minimumZoomScale() const { return _minimumZoomScale; }
    double maximumZoomScale() const { return _maximumZoomScale; }
    // The scale stays until it is changed. Ignored when not a positive number.
    void setMinimumZoomScale(double scale);
    void setMaximumZoomScale(double scale);

    // ---- fingers
    bool isScrollEnabled() const { return _pan->isEnabled(); }
    void setScrollEnabled(bool enabled) { _pan->setEnabled(enabled); }
    // Whether fingers may pull the content beyond its edges, and the scale beyond its limits. On at
    // first.
    bool bounces() const { return _bounces; }
    void setBounces(bool bounces) { _bounces = bounces; }
    bool bouncesZoom() const { return _bouncesZoom; }
    void setBouncesZoom(bool bounces) { _bouncesZoom = bounces; }
    // Content that is no larger than the view moves only where these are set.
    bool alwaysBounceHorizontal() const { return _alwaysBounceHorizontal; }
    void setAlwaysBounceHorizontal(bool bounces) { _alwaysBounceHorizontal = bounces; }
    bool alwaysBounceVertical() const { return _alwaysBounceVertical; }
    void setAlwaysBounceVertical(bool bounces) { _alwaysBounceVertical = bounces; }
    const std::shared_ptr<PanGestureRecognizer>& panGestureRecognizer() const { return _pan; }
    const std::shared_ptr<PinchGestureRecognizer>& pinchGestureRecognizer() const { return _pinch; }
    bool isDragging() const { return _isDragging; }
    bool isZooming() const { return _isZooming; }
    bool isDecelerating() const { return _glide && _glide->kind == GlideKind::Inertia; }
    // The scale is on its way back between its limits.
    bool isZoomBouncing() const { return _glide && _glide->kind == GlideKind::ZoomBounce; }
    // Leaves the content where it is, which may be beyond an edge.
    void stopMoving();
    // Whether a wheel moves the content, as far as its edges; off at first. Content that is seen
    // wholly leaves the wheel to others, and what only goes sideways takes both ways.
    bool isScrolledByWheel() const { return _isScrolledByWheel; }
    void setScrolledByWheel(bool isScrolled) { _isScrolledByWheel = isScrolled; }
    bool pointerScrolled(gfx::Point p, gfx::Point distance) override;

    // ---- delegate
    void setDelegate(std::weak_ptr<ScrollViewDelegate> delegate) {
        _delegate = std::move(delegate);
    }

protected:
    ScrollView() = default;
    // A new view clips to its bounds.
    void init(const gfx::Rect& frame) override;

private:
    class Fingers;
    enum class GlideKind { Inertia, ZoomBounce, Animation };
    // What moves the content by itself.
    struct Glide {
        GlideKind kind = GlideKind::Inertia;
        Time start = 0;
        // Inertia uses these.
        ScrollMotion horizontal;
        ScrollMotion vertical;
        // All other glides use these.
        gfx::Point fromOffset;
        gfx::Point toOffset;
        double fromScale = 1;
        double toScale = 1;
    };

    // ---- fingers
    void dragged(PanGestureRecognizer& pan);
    // The velocity that content is left with by one of a finger.
    gfx::Point released(gfx::Point velocity) const;
    void beginDragging();
    void endDragging(gfx::Point velocity);
    void pinched(PinchGestureRecognizer& pinch);
    void beginZooming();
    void endZooming();
    void fingersLeft();
    void takeUpOffset();
    void showFingers();

    // ---- moving by itself (ScrollViewMotion.cpp)
    void glide(Glide glide);
    void glideTo(GlideKind kind, gfx::Point offset, double scale);
    bool startInertia(gfx::Point velocity);
    void tick(Time time);
    bool show(const Glide& glide, Time passed);
    bool goesOnSince(Time start) const { return _glide && _glide->start == start; }
    void endGlide();
    void bounceZoom();

    // ---- place
    void place(gfx::Point offset);
    void applyScale(double scale);
    gfx::Point clamped(gfx::Point offset, gfx::Size content) const;
    ScrollRange horizontalRange(double contentWidth) const;
    ScrollRange verticalRange(double contentHeight) const;
    bool movesHorizontally() const;
    bool movesVertically() const;
    double shownScale(double scale) const;
    double pulledScale(double shown) const;
    double clampedScale(double scale) const;
    void zoomTo(gfx::Point offset, double scale, bool animated);
    std::shared_ptr<View> zoomedView();
    void tell(const std::function<void(ScrollViewDelegate&)>& message);

    std::shared_ptr<Fingers> _fingers;
    std::shared_ptr<PanGestureRecognizer> _pan;
    std::shared_ptr<PinchGestureRecognizer> _pinch;
    // Of the content at a scale of 1, so that zooming to and fro leaves it as it was.
    gfx::Size _unscaledSize;
    EdgeInsets _contentInset;
    double _zoomScale = 1;
    double _minimumZoomScale = 1;
    double _maximumZoomScale = 1;
    bool _bounces = true;
    bool _bouncesZoom = true;
    bool _alwaysBounceHorizontal = false;
    bool _alwaysBounceVertical = false;
    bool _isScrolledByWheel = false;
    bool _isDragging = false;
    bool _isZooming = false;
    // Where the fingers have brought offset and scale, without the rubber band.
    gfx::Point _pulledOffset;
    double _pulledScale = 1;
    // How much of what the gestures measure is in those two.
    gfx::Point _takenTranslation;
    double _takenScale = 1;
    // The middle of the fingers is seen from the view's corner.
    gfx::Point _focus;
    std::optional<Glide> _glide;
    // Runs only while the content glides.
    std::unique_ptr<DisplayLink> _link;
    std::weak_ptr<ScrollViewDelegate> _delegate;
};

}  // namespace kalim::ui
