#pragma once

#include <functional>
#include <optional>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim {

// How a view shows its canvas: the zoom, the move and the turn between canvas points and view
// points, and what two fingers do to them. Nothing but arithmetic; the final values are in force at
// once, whoever shows them may glide there. `content` is what the canvas holds, canvas points.
class KALIM_API CanvasZoom {
public:
    // The canvas, and the part of the view in whose middle it lies when nothing is zoomed.
    struct Place {
        gfx::Point canvasCenter;
        // The bounds are view points.
        gfx::Rect bounds;
        // Counter-clockwise, about the canvas's centre.
        int quarterTurns = 0;
        // So many view points make a canvas point.
        double fittingScale = 1;
        // The picture fills the view.
        bool isScreenShot = false;
        // No zoom goes beyond it, over the fitting scale.
        double largestScale = 2;
    };
    void setPlace(const Place& place);
    const gfx::Rect& bounds() const { return _place.bounds; }
    // Goes back to nothing zoomed, moved or turned, and no fingers on it.
    void reset();

    // ---- what is in force
    const gfx::AffineTransform& toView() const { return _toView; }
    const gfx::AffineTransform& toCanvas() const { return _toCanvas; }
    // Counts over the fitting scale.
    double scale() const;
    // So many view points make a canvas point.
    double shownScale() const { return scale() * _place.fittingScale; }
    double contextScale() const { return _contextScale; }
    // The zoom stays between these two.
    double defaultMinScale() const { return _defaultMinScale; }
    double largestScale() const { return _place.largestScale; }
    double rotateDegree() const { return _curRotateDegree; }
    // Stands in for a zoom of 1; 0 for none. Values that are not finite are ignored.
    void setImposedScale(float scale);

    // ---- bringing the content into the view
    bool isLargerThanView(const gfx::Rect& content) const;
    // Brings the zoom within its bounds.
    void clamp();
    // Zooms out until the content fits, and centres it.
    void fit(const gfx::Rect& content);
    void allowOrdinaryZoom();
    // Shows all of the content, zoomed out only where it is larger than the view.
    void showWhole(const gfx::Rect& content);
    // Zooms to a scale over the fitting one, within the bounds, about the middle of the view.
    void zoomTo(double scale, const gfx::Rect& content);

    // ---- two fingers; they may pinch and pan at once
    bool isHeld() const { return _isPinching || _isPanning; }
    bool isPinching() const { return _isPinching; }
    bool isPanning() const { return _isPanning; }
    // From the scale that is shown, which from now on is the zoom: none stands in for it any more.
    void beginPinch();
    // By this much since the pinch began; the view point stays in place.
    void pinch(double factor, gfx::Point focus);
    void endPinch(gfx::Point focus, const gfx::Rect& content);
    void beginPan();
    // View points since the pan began.
    void pan(gfx::Point translation);
    void endPan() { _isPanning = false; }
    // When both are over: centres content that has become smaller than the view, keeps other
    // content in reach. Answers how the fingers left it.
    gfx::AffineTransform settle(const gfx::Rect& content);

private:
    void update();
    gfx::Size shownSize(const gfx::Rect& content) const;
    void zoomAbout(gfx::Point focus, const std::function<void()>& change);
    gfx::Rect placeInBounds(const gfx::Rect& content) const;
    void centre(const gfx::Rect& content);
    void keepInReach(const gfx::Rect& content);
    bool isSmallerThanView(const gfx::Rect& content) const;

    Place _place;
    gfx::AffineTransform _toView;
    gfx::AffineTransform _toCanvas;
    // The first is committed, the second the factor of a pinch in progress.
    double _contextScale = 1.0;
    double _tmpContextScale = 1.0;
    double _defaultMinScale = 0.5;
    gfx::Point _move;
    // It is radians, in spite of its name.
    double _curRotateDegree = 0;
    float _imposedScale = 0;
    // Somebody has chosen the zoom, so that nothing stands in for a zoom of 1.
    bool _isChosen = false;
    bool _isPinching = false;
    bool _isPanning = false;
    // The pinch has left the content smaller than the view.
    bool _isPictureShrinked = false;
    // How a pinch left the view before the zoom was brought within its bounds.
    std::optional<gfx::AffineTransform> _shownBeforeClamping;
    // A pan under way said so last.
    gfx::Point _panTranslation;
};

}  // namespace kalim
