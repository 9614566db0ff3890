#include "kalimkit/crop/CropTurns.h"

#include <numbers>
#include <string>
#include <utility>

#include "kalimkit/crop/CropRest.h"
#include "kalimkit/tool/MDrawLogUtil.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim {

namespace {

constexpr double turnDuration = 0.4;
constexpr double turnVelocity = 0.8;
constexpr double gridFadeDuration = 0.2;

void logTurn(const gfx::Rect& image, double scale) {
    MDrawLogUtil::sharedInstance().logInfoMethodName(
        "edit image: rotate: x = " + std::to_string(image.minX()) + ", y = " +
            std::to_string(image.minY()) + ", width = " + std::to_string(image.size.width) +
            ", height = " + std::to_string(image.size.height) +
            ", scale = " + std::to_string(scale),
        "rotateImageToOrientation:withAnimation:completion:");
}

}  // namespace

void CropTurns::begin() {
    const std::int32_t confirmed = _board.scroll()->rotationOrientationOverall();
    _board.setOrientations(confirmed, confirmed);
    _board.setIsTurning(false);
    _isLocked = true;
}

// ---- turning

void CropTurns::turnTo(std::int32_t orientation, bool animated, Completion completion) {
    const std::int32_t turns = cropQuarterTurns(_board.orientation(), orientation);
    if (turns == 0 || !_board.isCropping() || _board.isTurning()) {
        const bool isThere = orientation == _board.orientation();
        if (completion) completion(isThere);
        return;
    }
    _board.stopContent();
    turnBy(turns, turnedCropShare(_board.share(), turns), animated, std::move(completion));
}

void CropTurns::turnBy(std::int32_t quarterTurns, const gfx::Rect& share, bool animated,
                       Completion completion) {
    _isLocked = true;
    _board.setIsTurning(true);
    _board.setGesturesEnabled(false);
    // Also what a finger has set going that was down until now.
    _board.scroll()->stopMoving();
    _board.stayHere();
    const CropPlacement next = placementAfter(quarterTurns, share);
    const gfx::Rect seen = _board.scroll()->imageFrame();
    const double oldLength = quarterTurns == 2 ? seen.size.width : seen.size.height;
    const double scale = next.image.size.width / oldLength;
    logTurn(next.image, scale);
    if (!animated) {
        finish(quarterTurns, share);
        if (completion) completion(true);
        return;
    }
    _board.grid()->setAlpha(0);
    ui::AnimationOptions options;
    options.duration = turnDuration;
    options.spring = ui::Spring{1, turnVelocity};
    anchorAt(_board.frame().center());
    ui::View::animate(
        options, [&] { show(quarterTurns, next, scale); },
        [run = _board.whileThere([this, quarterTurns, share, completion = std::move(completion)] {
            if (!_board.isOver()) finish(quarterTurns, share);
            if (completion) completion(true);
        })](bool) { run(); });
}

// What the scroll view turns about becomes that point; what is seen stays where it is.
void CropTurns::anchorAt(gfx::Point p) {
    EditImageScrollView& scroll = *_board.scroll();
    const gfx::Point by = p - scroll.center();
    scroll.setCenter(p);
    scroll.setBounds(scroll.bounds().offset(by));
}

void CropTurns::show(std::int32_t quarterTurns, const CropPlacement& placement, double scale) {
    EditImageScrollView& scroll = *_board.scroll();
    const auto turn =
        gfx::AffineTransform::rotation(quarterTurns * std::numbers::pi / 2).scaled(scale, scale);
    const gfx::Point fromCenter = _board.frame().center() - scroll.imageFrame().center();
    scroll.setTransform(turn);
    scroll.setCenter(placement.image.center() + turn.apply(fromCenter));
}

void CropTurns::finish(std::int32_t quarterTurns, const gfx::Rect& share) {
    _board.scroll()->setTransform({});
    _board.scroll()->setFrame(_board.scrollFrame());
    const CropPlacement placement = placementAfter(quarterTurns, share);
    _board.turnPicture(quarterTurns == 1);
    if (quarterTurns == 2) _board.turnPicture(false);
    _board.setIsTurning(false);
    _board.place(placement);
    _board.layOut();
    _isLocked = false;
    _board.setGesturesEnabled(true);
    ui::AnimationOptions options;
    options.duration = gridFadeDuration;
    ui::View::animate(options, [this] {
        _board.grid()->setAlpha(1);
        _board.setOverlayLevel(overlayLevelAtRest);
    });
    _board.bar()->hideRotateBtnWithAnimation(false, true);
}

CropPlacement CropTurns::placementAfter(std::int32_t quarterTurns, const gfx::Rect& share) const {
    gfx::Size image = _board.scroll()->imageView()->pixelsSeen();
    if (quarterTurns != 2) std::swap(image.width, image.height);
    return CropPlacement::settled(image, share, _board.contentFrame());
}

// ---- leaving

void CropTurns::commit() {
    _board.scroll()->onImageRotatedByOrientation(_board.orientation());
}

void CropTurns::takeBack() {
    const CropTurnsBack back =
        cropTurnsBack(_board.scroll()->rotationOrientationOverall() - _board.orientation());
    for (int turn = 0; turn < back.count; ++turn)
        _board.turnPicture(back.isBackwards);
}

void CropTurns::takeAllBack() {
    _board.setOrientations(_board.startOrientation(), _board.startOrientation());
    _board.scroll()->onImageRotatedByOrientation(_board.startOrientation());
}

}  // namespace kalim
