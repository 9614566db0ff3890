#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/image/PictureCut.h"
#include "kalimkit/ui/environment/EdgeInsets.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {
class PanGestureRecognizer;
class PinchGestureRecognizer;
}  // namespace kalim::ui

namespace kalim {

struct CanvasShown;

// A view of a canvas that two fingers zoom and move. Lengths are points; "canvas" points are those
// of the picture and what lies over it, which zoom, pan and rotation map to the view's own. The
// first size that the view has with a picture settles them; when it gets another one, the canvas
// is shown fitted and centred in it, unzoomed, and nothing on it changes.
class KALIM_API ZoomedCanvasView : public ui::View {
public:
    ~ZoomedCanvasView() override;

    // ---- the canvas
    // The upright, fitted picture; null when there is none.
    const gfx::ImageRef& bgImg() const;
    // As it was handed in, upright; null without one.
    const gfx::ImageRef& sourceImage() const;
    // Where it lies, canvas points.
    const gfx::Rect& bgImgRect() const;
    // The content unites the picture's rectangle with every tool's extent, in canvas points. Of a
    // cropped picture it is the part that is shown.
    const gfx::Rect& ctxRect() const;
    // Which part of the picture is shown, and how it is turned; all of it, as it is, without one.
    const PictureCut& pictureCut() const;

    // ---- zoom
    // View point to canvas point. Where canvas points are the picture's, to 1/256 of one, so that
    // the same place of the picture is the same point in views of every size.
    gfx::Point invertViewPoint(gfx::Point p) const;
    // The factor at which the canvas is shown, over the one that fits it into the view.
    double getScale() const;
    double contextScale() const;
    // No zoom is smaller.
    double defaultMinScale() const;
    // The largest zoom: 2, or as much more as the magnification allows.
    double largestScale() const;
    // How many pixels of the screen may come to one of the picture. 0, the default, leaves it at a
    // zoom of 2, which is always allowed. Values that are not finite or below zero are ignored.
    void setLargestMagnification(double pixels);
    double largestMagnification() const { return _largestMagnification; }
    // Brings the zoom within its bounds.
    void checkAndUpdateCTXScale();
    // Zooms out until the content fits the view, and centres it.
    void autoScaleWhenCtxEnlarged();
    // Three ways to zoom without fingers, about the middle of the view; it glides there. Answers
    // whether it may move now. All of the content, unzoomed where that is possible;
    bool zoomToFit();
    // one pixel of the screen for one of the picture; the zoom that is shown times a factor.
    // Ignored without a picture, and for factors that are not above zero and finite.
    bool zoomToPixels();
    bool zoomBy(double factor);
    // As zoomToPixels(), for so many pixels of the screen.
    bool zoomToMagnification(double pixels);
    // How many pixels of the screen one of the picture comes to, and how many of its pixels a
    // canvas point has; 0 without a picture.
    double magnification() const;
    double pixelsPerPoint() const;
    // Where a canvas point lies in the picture as it is cut and turned, pixels; nothing without
    // one.
    std::optional<gfx::Point> picturePoint(gfx::Point p) const;
    // Canvas point to view point: the zoom and move in force, whatever is still being animated.
    const gfx::AffineTransform& mViewTransform() const;
    // A scale for display while the canvas is not zoomed; 0 for none.
    void setFScal(float scale);

    // ---- the room in the view
    // How far the picture keeps from the view's edges, points, when it is fitted and centred, such
    // as for bars that lie over the view; none at first. What is zoomed in, and what is drawn
    // beyond the picture, reaches under them. Amounts that are not finite or below 0 are ignored,
    // and a margin that leaves no room counts for nothing.
    const ui::EdgeInsets& layoutMargin() const { return _layoutMargin; }
    void setLayoutMargin(const ui::EdgeInsets& margin);

    // ---- gestures
    bool enableGesture() const { return _enableGesture; }
    // This admits two-finger gestures.
    void setEnableGesture(bool enable) { _enableGesture = enable; }
    ui::PinchGestureRecognizer& pinchGesture() { return *_pinchGesture; }
    ui::PanGestureRecognizer& panGesture() { return *_panGesture; }
    // `scale` is the factor since the gesture began, `focus` the view point that stays in place.
    void handlePinchGesture(ui::GestureState state, double scale, gfx::Point focus);
    // View points since the gesture began.
    void handlePanGesture(ui::GestureState state, gfx::Point translation);

protected:
    ZoomedCanvasView();

    // Has the recogniser watch only: the touches are the view's own all the same.
    void watch(const std::shared_ptr<ui::GestureRecognizer>& gesture,
               std::function<void(ui::GestureState)> handle);
    void addViewGestures();
    virtual bool mayMoveView() const { return _enableGesture; }
    virtual bool mayZoomView() const { return mayMoveView(); }
    virtual void viewGestureDidBegin() {}
    virtual void viewGestureDidEnd() {}

    // The part of the view that the picture is fitted into.
    gfx::Rect room() const;
    // Tells the zoom where canvas and view are.
    void placeCanvas();
    // Brings what is shown up to date with the view's size and the screen's scale. `isUnused`:
    // there is nothing on the canvas that has a place yet.
    enum class Fitting { Nothing, NewScale, Resized, Settled };
    Fitting fitPicture(bool isUnused);
    void fitResized();
    // What somebody has zoomed to: as large, and with the same place in the middle. Nothing where
    // the content is shown as a whole.
    struct ChosenZoom {
        // So many view points make a canvas point.
        double shownScale = 1;
        gfx::Point middle;
    };
    std::optional<ChosenZoom> chosenZoom() const;
    void restoreZoom(const ChosenZoom& zoom);
    // Nothing zoomed, moved or held.
    void resetView();
    // Shows another part of the picture, or the same turned. The content is measured by the caller,
    // who then lets the view glide there from how it was shown, if it is to be seen.
    struct Seen {
        gfx::AffineTransform transform;
        gfx::Rect content;
    };
    Seen seen() const;
    void takeCut(const PictureCut& cut);
    void glideFrom(const Seen& before);
    // The way from one cut to another is over: a finger is to see where it is.
    void endCutGlide();

    CanvasShown& shown() { return *_shown; }
    const CanvasShown& shown() const { return *_shown; }

private:
    template <typename Change>
    void changeView(Change change);
    template <typename Change>
    bool glide(Change change);
    double scaleForMagnification(double pixels) const;
    void settleView(const gfx::AffineTransform& from);
    void beginViewGesture();
    void endViewGesture();

    std::unique_ptr<CanvasShown> _shown;
    ui::EdgeInsets _layoutMargin;
    bool _enableGesture = true;
    double _largestMagnification = 0;
    std::shared_ptr<ui::PinchGestureRecognizer> _pinchGesture;
    std::shared_ptr<ui::PanGestureRecognizer> _panGesture;
};

}  // namespace kalim
