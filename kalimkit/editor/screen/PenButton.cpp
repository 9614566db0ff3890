#include "kalimkit/editor/screen/PenButton.h"

#include <string>
#include <utility>

#include "kalimkit/tool/MDrawLogUtil.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim {

namespace {

constexpr const char* ringHintKey = "canUseRingAnimation";
constexpr double fadeDuration = 0.2;
constexpr double popDuration = 0.15;
constexpr double settleDuration = 0.1;

}  // namespace

void PenButton::make(std::weak_ptr<TesselPenViewDelegate> delegate) {
    _view = TesselPenView::initWithFrame({});
    _view->setDelegate(std::move(delegate));
    _view->setAlpha(0);
    _stage.chrome()->addSubview(_view);
}

void PenButton::allowRing() {
    const bool isWanted = ui::Environment::current().userDefault(ringHintKey).value_or(true);
    _view->setCanUseRingAnimation(isWanted);
    MDrawLogUtil::sharedInstance().logInfoMethodName(
        std::string("draw canUseRingAnimation ") + (isWanted ? "1" : "0"), "viewDidAppear:");
}

void PenButton::endRing() {
    if (!_view->canUseRingAnimation()) return;
    ui::Environment::current().setUserDefault(ringHintKey, false);
    _view->ringAnimationOp(0);
    _view->setCanUseRingAnimation(false);
}

void PenButton::fade(double alpha) {
    ui::View::animate({.duration = fadeDuration}, [this, alpha] { _view->setAlpha(alpha); });
}

void PenButton::pop() {
    ui::View::performWithoutAnimation([this] {
        _view->setAlpha(0);
        _view->setTransform(gfx::AffineTransform::scaling(0.5, 0.5));
    });
    ui::View::animate(
        {.duration = popDuration, .allowsUserInteraction = true},
        [this] {
            _view->setAlpha(1);
            _view->setTransform(gfx::AffineTransform::scaling(1.1, 1.1));
        },
        _stage.atEnd([this] {
            ui::View::animate({.duration = settleDuration, .allowsUserInteraction = true},
                              [this] { _view->setTransform({}); });
        }));
}

}  // namespace kalim
