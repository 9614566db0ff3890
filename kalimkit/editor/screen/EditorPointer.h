#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

class MDrawView;
class TesselViewController;

enum class PointerButton { Main, Middle, Other };

// What the buttons and the wheel of a mouse do in the editor, the same under every host: the middle
// button pans, and so does the main one while the space bar is held; the wheel zooms. All else is a
// finger's, and the host's to pass on to the window. Points are the window's.
class KALIM_API EditorPointer {
public:
    explicit EditorPointer(std::weak_ptr<TesselViewController> editor);
    ~EditorPointer();
    EditorPointer(const EditorPointer&) = delete;
    EditorPointer& operator=(const EditorPointer&) = delete;

    // ---- buttons. True when the editor pans with it; a finger otherwise.
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

private:
    bool isCanvasFree() const;
    gfx::Point inCanvas(gfx::Point place) const;
    void endZoom();
    void endScroll();
    void showCursor() const;

    // Held by the host as long as it is shown; weak, because a message of its may end that.
    std::weak_ptr<TesselViewController> _editor;
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
