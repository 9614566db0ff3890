#include "kalimkit/canvas/CanvasGlide.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "kalimkit/canvas/PictureLayout.h"
#include "kalimkit/ui/motion/TimingCurve.h"

namespace kalim {

namespace {

double mixed(double from, double to, double share) {
    return from + (to - from) * share;
}

gfx::Point mixed(gfx::Point from, gfx::Point to, double share) {
    return {mixed(from.x, to.x, share), mixed(from.y, to.y, share)};
}

// Radians, the shorter way round.
double turnBetween(const gfx::AffineTransform& from, const gfx::AffineTransform& to) {
    const double turn = std::atan2(to.b, to.a) - std::atan2(from.b, from.a);
    return std::remainder(turn, 2 * std::numbers::pi);
}

// Turns about the middle rather than shearing.
gfx::AffineTransform turnedOnTheWay(const gfx::AffineTransform& from,
                                    const gfx::AffineTransform& to, gfx::Point middle,
                                    double share) {
    const double scale = mixed(std::hypot(from.a, from.b), std::hypot(to.a, to.b), share);
    const double angle = std::atan2(from.b, from.a) + turnBetween(from, to) * share;
    return canvasToView(middle, mixed(from.apply(middle), to.apply(middle), share), scale, angle);
}

}  // namespace

CutGlide::CutGlide(const gfx::Rect& from, const gfx::Rect& to, const gfx::AffineTransform& toView,
                   const gfx::Rect& view)
    : _from(from), _to(to), _shown(from), _whole(from.unionWith(to)) {
    const gfx::Size seen = toView.apply(_whole).size;
    const double shrink =
        std::min({view.size.width / seen.width, view.size.height / seen.height, 1.0});
    const gfx::AffineTransform smaller =
        toView.concat(gfx::AffineTransform::scaling(shrink, shrink));
    _overview = smaller.concat(
        gfx::AffineTransform::translation(view.center() - smaller.apply(_whole.center())));
}

void CutGlide::show(double share) {
    _shown =
        gfx::Rect::spanning(mixed(_from.origin, _to.origin, share),
                            mixed({_from.maxX(), _from.maxY()}, {_to.maxX(), _to.maxY()}, share));
}

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

void CanvasGlide::changeCut(const gfx::Rect& from, const gfx::Rect& to, const gfx::Rect& view) {
    _cut.emplace(from, to, _to, view);
}

void CanvasGlide::tick(ui::Time time) {
    constexpr double noTurn = 1e-9;
    const double share = ui::easeInOut((time - _start) / duration);
    if (_cut) _cut->show(share);
    if (_cut && std::abs(turnBetween(_from, _to)) > noTurn) {
        _shown = turnedOnTheWay(_from, _to, _cut->middleAtEnd(), share);
    } else {
        // Neither end is turned against the other, so the parts of the transform mix one by one.
        const auto mix = [share](double from, double to) { return mixed(from, to, share); };
        _shown = {mix(_from.a, _to.a), mix(_from.b, _to.b),   mix(_from.c, _to.c),
                  mix(_from.d, _to.d), mix(_from.tx, _to.tx), mix(_from.ty, _to.ty)};
    }
    const auto step = _step;
    step(share >= 1);
}

}  // namespace kalim
