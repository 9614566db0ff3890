#pragma once

#include <functional>

#include "kalimkit/gfx/AffineTransform.h"
#include "kalimkit/ui/loop/DisplayLink.h"

namespace kalim {

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

private:
    void tick(ui::Time time);

    gfx::AffineTransform _from;
    gfx::AffineTransform _to;
    gfx::AffineTransform _shown;
    ui::Time _start;
    std::function<void(bool)> _step;
    ui::DisplayLink _link;
};

}  // namespace kalim
