#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/image/PictureCut.h"
#include "kalimkit/image/PictureReductions.h"

namespace kalim {

// The picture under the drawings: where it lies on the canvas, and copies of it at the sizes that
// are asked for. The first view with a size settles the canvas: its points become canvas points,
// and the picture is fitted into it. Views of other sizes that follow show the same canvas smaller
// or larger, from a copy made for them. Without a picture only the canvas is settled. With a basis
// the picture itself settles the canvas, which is the same in every view.
class KALIM_API CanvasPicture {
public:
    // Takes a picture, turned upright, for a view with these bounds, and forgets the old one and
    // its canvas. Null for none. Bounds without an area leave the canvas unsettled until showIn().
    // `basis` is how many canvas points the picture's longer side is to have; 0 for none.
    void take(const gfx::ImageRef& image, const gfx::Rect& bounds, double basis = 0);
    // How a canvas was settled, so that it can be settled so again, whatever view shows it then.
    struct Settlement {
        // Canvas points.
        gfx::Rect canvas;
        gfx::Rect rect;
        // 0 for none.
        double basis = 0;
        // The screen's pixels per point where a view settled it.
        double scale = 1;
    };
    Settlement settlement() const;
    // Takes a picture as take() does, but settled in that way.
    void takeSettled(const gfx::ImageRef& image, const Settlement& settlement,
                     const gfx::Rect& bounds);
    // The view has these bounds from now on, on a screen with this many pixels per point. Ignored
    // for bounds without an area.
    void showIn(const gfx::Rect& bounds, double screenScale);
    double screenScale() const { return _screenScale; }
    bool isShownIn(const gfx::Rect& bounds, double screenScale) const;

    bool isSettled() const { return !_canvas.isEmpty(); }
    // Whether canvas points are the picture's, whatever view shows it.
    bool hasBasis() const { return _basis > 0; }
    // The bounds of the view that settled the canvas, or of the picture that did.
    const gfx::Rect& canvas() const { return _canvas; }
    // Where the picture lies, canvas points; empty without one.
    const gfx::Rect& rect() const { return _rect; }
    // View points per canvas point for a view that shows the canvas as it first came.
    double fittingScale() const { return _fittingScale; }
    // The same for a view as large as the canvas was settled for: 1 as long as nothing is cut.
    double settledScale() const { return scaleIn(_canvas.size); }
    // Whether the picture, shown so, fills the view.
    bool fillsView() const;

    // ---- what of it is shown. A new picture is shown as a whole, as it is.
    const PictureCut& cut() const { return _cut; }
    // The copies follow. Ignored where it is no cut of the picture.
    void setCut(const PictureCut& cut);
    // Whether anything of it is left away.
    bool isCropped() const;
    // The part that is shown, canvas points: rect() where that is all of it.
    gfx::Rect part() const;

    // All null without a picture. As it was handed in, upright.
    const gfx::ImageRef& source() const { return _source; }
    // What mosaic blocks are made of, so that they never change with the view: the picture as it
    // was fitted into the canvas, at the scale of the screen on which that was done, or with a
    // basis a pixel for each canvas point, unless the picture has fewer. Made anew for each who
    // asks.
    gfx::ImageRef blockSource() const;
    // The side of a sealed block, pixels of the picture: such a block is as large as one that
    // averages, and has 8 pixels at least.
    int sealedLevel() const;
    // Fitted into the canvas at the scale of the present screen; with a basis as large as the view
    // shows it when nothing is zoomed.
    const gfx::ImageRef& fitted() const { return _fitted; }
    // As large as the view shows it.
    const gfx::ImageRef& shown() const { return _shown; }
    // What to draw where a canvas point comes to this many pixels of the screen: shown() as long as
    // that has the pixels, else a copy with more of the picture's own.
    gfx::ImageRef shownAt(double pixelsPerPoint, PictureReductions::Making making);
    // The copy that there is that has so many pixels, or else the picture as it was handed in: for
    // a place that is shown once more. Makes and lets go of nothing.
    const gfx::ImageRef& repeatedAt(double pixelsPerPoint) const;
    // The same for an export, which does not care what a view shows.
    gfx::ImageRef exportedAt(double pixelsPerPoint);
    // Repeats what that answered last; null before.
    const gfx::ImageRef& lastShown() const { return _lastShown; }
    // Tells how many pixels of the picture make a canvas point; 0 without one.
    double pixelsPerPoint() const;
    // Gives the memory of the copies for shownAt() back.
    void releaseCopies();

    // ---- another picture in its place
    // The same with other pixels, as many. It has no copies but its source before makeCopies().
    CanvasPicture over(gfx::ImageRef source) const;
    void makeCopies();
    // Whether both lie on the canvas in the same way and are shown so.
    bool isShownAs(const CanvasPicture& other) const;

private:
    void settle(const gfx::Rect& bounds);
    void settleByBasis();
    void fit();
    double scaleIn(gfx::Size box) const;
    gfx::Size sizeIn(gfx::Size box, const PictureCut& cut) const;
    double scaleIn(gfx::Size box, const PictureCut& cut) const;
    gfx::Rect partOnCanvas(const PictureCut& cut) const;
    gfx::ImageRef first() const;
    gfx::ImageRef copy(double factor, double screenScale) const;
    gfx::ImageRef redrawn(double factor, double screenScale) const;

    double _basis = 0;
    PictureCut _cut;
    gfx::Rect _canvas;
    gfx::Rect _rect;
    double _fittingScale = 1;
    gfx::Rect _bounds;
    double _screenScale = 0;
    double _firstScale = 0;
    gfx::ImageRef _source;
    gfx::ImageRef _first;
    gfx::ImageRef _fitted;
    gfx::ImageRef _shown;
    gfx::ImageRef _lastShown;
    PictureReductions _reductions;
};

}  // namespace kalim
