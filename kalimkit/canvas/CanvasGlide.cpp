#include "kalimkit/canvas/CanvasGlide.h"

#include <utility>

#include "kalimkit/ui/motion/TimingCurve.h"

namespace kalim {

CanvasGlide::CanvasGlide(const gfx::AffineTransform& from, const gfx::AffineTransform& to,
                         ui::RunLoop& loop, std::function<void(bool)> step)
    : _from(from),
      _to(to),
      _shown(from),
      _start(loop.now()),
      _step(std::move(step)),
      _link(loop, [this](ui::Time time) { tick(time); }) {
    _link.setPaused(false);
}

void CanvasGlide::tick(ui::Time time) {
    const double share = ui::easeInOut((time - _start) / duration);
    // Neither end is turned against the other, so the parts of the transform mix one by one.
    const auto mixed = [share](double from, double to) { return from + (to - from) * share; };
    _shown = {mixed(_from.a, _to.a), mixed(_from.b, _to.b),   mixed(_from.c, _to.c),
              mixed(_from.d, _to.d), mixed(_from.tx, _to.tx), mixed(_from.ty, _to.ty)};
    const auto step = _step;
    step(share >= 1);
}

}  // namespace kalim
