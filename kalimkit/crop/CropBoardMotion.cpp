#include <cmath>
#include <utility>

#include "kalimkit/crop/CropBoard.h"
#include "kalimkit/crop/CropRest.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

// The time of the crop editor, and how frame and picture come to rest.

namespace kalim {

namespace {

constexpr double settleDelay = 0.4;
// Points within which the frame is where it belongs.
constexpr double restTolerance = 1e-6;

bool isNear(const gfx::Rect& a, const gfx::Rect& b) {
    return std::abs(a.minX() - b.minX()) < restTolerance &&
           std::abs(a.minY() - b.minY()) < restTolerance &&
           std::abs(a.maxX() - b.maxX()) < restTolerance &&
           std::abs(a.maxY() - b.maxY()) < restTolerance;
}

}  // namespace

// ---- time

std::function<void()> CropBoard::whileThere(std::function<void()> step) const {
    return [weakView = _view.weak_from_this(), step = std::move(step)] {
        if (const auto alive = weakView.lock()) step();
    };
}

void CropBoard::after(double delay, std::function<void()> step) const {
    ui::Environment::current().runLoop().after(delay, whileThere(std::move(step)));
}

void CropBoard::animate(double duration, const std::function<void()>& changes,
                        const std::function<void()>& end) const {
    if (!_isAnimateEnable) {
        changes();
        if (end) end();
        return;
    }
    ui::AnimationOptions options;
    options.duration = duration;
    options.allowsUserInteraction = true;
    ui::View::animate(options, changes,
                      [run = end ? whileThere(end) : std::function<void()>()](bool) {
                          if (run) run();
                      });
}

// ---- motion and rest

void CropBoard::animateContent(const std::function<void()>& changes) {
    _isAnimating = true;
    animate(cropSettleDuration, changes, [this, motion = ++_motions] { cameToRest(motion); });
}

void CropBoard::cameToRest(int motion) {
    // What began meanwhile has taken over.
    if (motion != _motions || !std::exchange(_isAnimating, false)) return;
    matchOverlay();
    checkForCanRevert();
    if (!_isOver) setOverlayLevel(overlayLevelAtRest);
}

void CropBoard::stopContent() {
    if (!std::exchange(_isAnimating, false)) return;
    const auto& picture = _scroll->imageView();
    const gfx::Rect frame = _grid->shownFrame();
    const gfx::Rect shown = picture->shownRectInWindow();
    const gfx::Size size = picture->bounds().size;
    place({size,
           shown.size.width / size.width,
           {_view.convertPointFrom(shown.origin, nullptr), shown.size},
           frame});
    // Fingers that are down go on from here, with the frame's inset.
    _scroll->setContentOffset(_scroll->contentOffset());
}

void CropBoard::moveToCenter() {
    if (!_isCropping) return;
    _scroll->stopMoving();
    const CropPlacement placement =
        CropPlacement::settled(_scroll->imageView()->bounds().size, share(), contentFrame());
    const bool isThere =
        isNear(placement.frame, _frame) && isNear(placement.image, _scroll->imageFrame());
    const auto dim = [this] { setOverlayLevel(overlayLevelAtRest); };
    if (isThere) return animate(cropSettleDuration, dim);
    animateContent([&] {
        place(placement);
        dim();
    });
}

void CropBoard::settleSoon() {
    settleAfter(settleDelay);
}

void CropBoard::settleAfter(double delay) {
    if (_timer.isRunning()) return;
    _timer.start(delay, true, whileThere([this] {
                     moveToCenter();
                     _bar->hideRotateBtnWithAnimation(false, true);
                     _timer.stop();
                 }));
}

void CropBoard::contentDidMove() const {
    if (!_isCropping || _isAnimating || _isTurning) return;
    matchOverlay();
    checkForCanRevert();
}

}  // namespace kalim
