#pragma once

#include <memory>

#include "kalimkit/gfx/Rect.h"

namespace kalim {

class CanvasScreen;
class CanvasTools;
struct CanvasShown;

// How far the content of a canvas reaches: the picture and what is drawn, up to an area budget.
class CanvasContent {
public:
    // What of the canvas it uses.
    struct Canvas {
        CanvasTools& tools;
        CanvasShown& shown;
        CanvasScreen& screen;
    };
    explicit CanvasContent(const Canvas& canvas) : _canvas(canvas) {}

    bool clipsToPicture() const { return _clipsToPicture; }
    void setClipsToPicture(bool clips) { _clipsToPicture = clips; }
    // Whether there is a picture whose edge, or that of the part that is shown, cuts what is drawn.
    bool endsAtPicture() const;

    // Finds the content anew, as it is.
    void measure();
    // The same, but a step that takes it beyond the area budget is taken back with an alert, and
    // what comes or goes is drawn again. Whether the content has changed.
    bool refresh();
    // As long as this lives nothing is measured or taken back; then it is measured once.
    std::shared_ptr<void> suspended();
    // What an export shows, canvas points.
    gfx::Rect exported() const;

private:
    gfx::Rect measured() const;
    void takeBack();

    Canvas _canvas;
    bool _clipsToPicture = false;
    // A step beyond the area budget is being undone.
    bool _isTakingBack = false;
    bool _isSuspended = false;
};

}  // namespace kalim
