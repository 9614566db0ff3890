#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

class MDrawView;

enum class PointerButton { Main, Middle, Other };

// What the buttons and the wheel of a mouse do on a canvas, the same under every host: the middle
// button pans, and so does the main one while the space bar is held; the wheel zooms. All else is a
// finger's, and the host's to pass on to the window. Points are the window's.
class KALIM_API CanvasPointer {
public:
    // Whoever shows the canvas holds it.
    explicit CanvasPointer(std::weak_ptr<MDrawView> canvas);
    virtual ~CanvasPointer();
    CanvasPointer(const CanvasPointer&) = delete;
    CanvasPointer& operator=(const CanvasPointer&) = delete;

    // Null when there is none.
    virtual std::shared_ptr<MDrawView> canvas() const { return _canvas.lock(); }

    // ---- buttons. True when the canvas pans with it; a finger otherwise.
    bool pointerPressed(PointerButton button, gfx::Point place);
    bool pointerMoved(gfx::Point place);
    bool pointerReleased(PointerButton button);
    // While true, the main button pans as the middle one does. A pan under way goes on.
    void setMainButtonPans(bool pans);

    // ---- zooming
    // A notch of a wheel, or a touchpad: enlarges by the factor about a place.
    void pointerZoomed(gfx::Point place, double factor);
    // A wheel sideways, or two fingers on a touchpad, move the canvas by so many points.
    void pointerScrolled(gfx::Point distance);
    // The canvas, when something else than the pointer may zoom it now, and the wheel has come to
    // its end then; null otherwise.
    MDrawView* canvasToZoom();

protected:
    // Without a canvas of its own: canvas() answers with one.
    CanvasPointer() = default;
    // Whether something lies over the canvas that is to be done with first, besides alerts.
    virtual bool isCovered() const { return false; }

private:
    std::shared_ptr<MDrawView> freeCanvas() const;
    void endZoom();
    void endScroll();
    void showCursor() const;

    std::weak_ptr<MDrawView> _canvas;
    bool _mainButtonPans = false;
    // The button that pans, where it went down, and where the pointer is now.
    std::optional<PointerButton> _panButton;
    gfx::Point _panStart;
    gfx::Point _panEnd;
    // Of a zoom under way: since it began, the canvas's scale before it, and where it was last.
    double _zoom = 1;
    double _scaleBeforeZoom = 1;
    gfx::Point _zoomPlace;
    // The delayed call that ends the zoom; 0 without one.
    std::uint64_t _zoomEnd = 0;
    // The same of a scroll, and how far it has come.
    std::uint64_t _scrollEnd = 0;
    gfx::Point _scroll;
};

}  // namespace kalim
