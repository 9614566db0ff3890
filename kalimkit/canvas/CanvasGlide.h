#pragma once

#include <functional>
#include <optional>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/loop/DisplayLink.h"

namespace kalim {

// What is shown of the canvas while one cut of the picture gives way to another; canvas points.
class CutGlide {
public:
    // `toView` is how the canvas is shown in the end, in a view with these bounds.
    CutGlide(const gfx::Rect& from, const gfx::Rect& to, const gfx::AffineTransform& toView,
             const gfx::Rect& view);

    const gfx::Rect& shown() const { return _shown; }
    void show(double share);
    // All that is shown on the way, and a transform that shows it all in the view.
    const gfx::Rect& whole() const { return _whole; }
    const gfx::AffineTransform& overview() const { return _overview; }
    gfx::Point middleAtEnd() const { return _to.center(); }

private:
    gfx::Rect _from;
    gfx::Rect _to;
    gfx::Rect _shown;
    gfx::Rect _whole;
    gfx::AffineTransform _overview;
};

// The canvas gliding to another place and size, on the run loop's clock. Nothing but what is shown
// takes part; the canvas is where it is going to be.
class CanvasGlide {
public:
    // The duration is seconds.
    static constexpr double duration = 0.25;

    // `step` is called at every display tick with whether it was the last. It may destroy the
    // animation.
    CanvasGlide(const gfx::AffineTransform& from, const gfx::AffineTransform& to, ui::RunLoop& loop,
                std::function<void(bool isOver)> step);

    const gfx::AffineTransform& shown() const { return _shown; }
    // The way is one from cut to cut, which turns the canvas as well where the cuts differ in that.
    void changeCut(const gfx::Rect& from, const gfx::Rect& to, const gfx::Rect& view);
    // Null where it is not.
    const CutGlide* changingCut() const { return _cut ? &*_cut : nullptr; }

private:
    void tick(ui::Time time);

    gfx::AffineTransform _from;
    gfx::AffineTransform _to;
    gfx::AffineTransform _shown;
    std::optional<CutGlide> _cut;
    ui::Time _start;
    std::function<void(bool)> _step;
    ui::DisplayLink _link;
};

}  // namespace kalim
