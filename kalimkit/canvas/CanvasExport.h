#pragma once

#include <memory>
#include <optional>

#include "kalimkit/canvas/ExportedPicture.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Point.h"

namespace kalim::ui {
class View;
}

namespace kalim {

class CanvasContent;
class CanvasFinger;
class CanvasHistory;
class CanvasPainter;
class CanvasScreen;
class CanvasSelection;
class CanvasTyping;
struct CanvasShown;

// Makes the pictures that a canvas hands out.
class CanvasExport {
public:
    // What of the canvas it uses.
    struct Canvas {
        ui::View& view;
        CanvasShown& shown;
        CanvasContent& content;
        CanvasPainter& painter;
        CanvasScreen& screen;
        CanvasSelection& selection;
        CanvasTyping& typing;
        CanvasFinger& finger;
        CanvasHistory& history;
    };
    explicit CanvasExport(const Canvas& canvas) : _canvas(canvas) {}

    // Ends what is being drawn and typed, which belongs to the picture, too, and lets go of the
    // selection.
    void settle();

    // The view has been brought up to date before. See MDrawView::exportImage(),
    // exportImageAtPictureScale() and exportImageForScale().
    gfx::ImageRef image();
    gfx::ImageRef imageAtPictureScale();
    // See MDrawView::exportedPicture().
    std::optional<ExportedPicture> exportedPicture(const gfx::ImageRef& image) const;
    // See MDrawView::exportUncutImage().
    gfx::ImageRef uncutImage();
    gfx::ImageRef imageOfView();
    // See MDrawView::filterImg().
    gfx::ImageRef blurred(const gfx::ImageRef& image);

private:
    gfx::ImageRef drawnAtScreenScale();
    // What comes at the picture's scale, whole and unturned, and where the picture's corner is.
    struct Drawn {
        gfx::ImageRef image;
        gfx::Point origin;
    };
    Drawn drawnAtPictureScale();
    gfx::ImageRef cropAtScreenScale();
    double pointsOnScreen() const;
    gfx::ImageRef turned(const gfx::ImageRef& image) const;
    void noteExported(const gfx::ImageRef& image, gfx::Point origin);

    Canvas _canvas;
    // What was handed out last at the picture's scale, and how it came about.
    std::weak_ptr<const gfx::Image> _last;
    ExportedPicture _lastOrigin;
};

}  // namespace kalim
