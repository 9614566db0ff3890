#include <algorithm>
#include <cstddef>
#include <utility>

#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim {

namespace {

constexpr double zoomDuration = 0.3;
constexpr double cleanUpDelay = 0.1;

}  // namespace

// ---- the picture that moves

void TesselViewController::makeTransitionView(const gfx::ImageRef& image) {
    dropTransitionView();
    _viewAnimateImageView = ui::ImageView::initWithFrame({});
    _viewAnimateImageView->setImage(image);
}

void TesselViewController::dropTransitionView() {
    if (const auto picture = std::exchange(_viewAnimateImageView, nullptr)) {
        picture->removeFromSuperview();
    }
}

// The rectangle is that of the picture before it is scaled about its centre.
void TesselViewController::placeTransitionView(const gfx::Rect& rect, double scale) {
    _viewAnimateImageView->setBounds({{}, rect.size});
    _viewAnimateImageView->setCenter(rect.center());
    _viewAnimateImageView->setTransform(gfx::AffineTransform::scaling(scale, scale));
}

// Where the picture is seen in the end, at a scale.
void TesselViewController::placeTransitionViewInto(const gfx::Rect& seen, double scale) {
    const gfx::Size size = seen.size * (1 / scale);
    placeTransitionView({seen.center() - gfx::Point{size.width / 2, size.height / 2}, size}, scale);
}

// Where the canvas shows a rectangle of its own, coordinates of the controller's view.
gfx::Rect TesselViewController::shownByCanvas(const gfx::Rect& rect) const {
    return _drawView->toSuperview().apply(_drawView->mViewTransform().apply(rect));
}

void TesselViewController::insertTransitionView() {
    _viewAnimateImageView->removeFromSuperview();
    const auto& views = view()->subviews();
    const auto bar = std::ranges::find(views, std::static_pointer_cast<ui::View>(_toolView));
    view()->insertSubview(_viewAnimateImageView, static_cast<std::size_t>(bar - views.begin()));
}

// ---- the ways in and out

void TesselViewController::startAnimateIn(const std::function<void()>& alongside) {
    const auto alive = self();
    view()->layoutIfNeeded();
    makeTransitionView(_snipImage);
    placeTransitionView(_fromRect, _fromScale);
    insertTransitionView();
    log("###### startScaleAnimate In start", "startAnimateIn:");
    _toolView->setAlpha(0);
    animateTransition(
        [this, &alongside] {
            if (alongside) alongside();
            _toolView->setAlpha(1);
            placeTransitionViewInto(shownByCanvas(_drawView->bgImgRect()), _drawView->getScale());
        },
        &TesselViewController::didAnimateIn);
    _penView->setAlpha(0);
    after(0.1, [](TesselViewController& controller) { controller.showPenview(); });
}

void TesselViewController::didAnimateIn() {
    _needInitAnimate = false;
    _toolView->setAlpha(1);
    cleanUpTransition([](TesselViewController& controller) {
        controller.log("###### startScaleAnimate In end", "startAnimateIn:");
    });
}

void TesselViewController::startAnimateOut(const gfx::Rect& target,
                                           std::function<void(bool finished)> completion) {
    const auto alive = self();
    if (_isImageCroped) {
        if (completion) completion(false);
        return;
    }
    view()->layoutIfNeeded();
    _needInitAnimate = true;
    makeTransitionView(_drawView->exportImage());
    // The picture, and what was drawn beyond it.
    const double scale = _drawView->getScale();
    placeTransitionViewInto(shownByCanvas(_drawView->ctxRect()), scale);
    insertTransitionView();
    _drawView->setHidden(true);
    log("###### startScaleAnimate out start", "startAnimateOut:");
    animateTransition(
        [&] {
            _toolView->setAlpha(0);
            // It keeps its scale.
            placeTransitionViewInto(target, scale);
        },
        &TesselViewController::didAnimateOut, std::move(completion));
}

void TesselViewController::didAnimateOut() {
    cleanUpTransition([](TesselViewController& controller) {
        // Until the host has taken the editor away, nothing comes back that has gone.
        controller._drawView->setHidden(controller._forgiving && controller.window());
        controller._needInitAnimate = false;
        controller.log("###### startScaleAnimate out end", "startAnimateOut:");
    });
}

void TesselViewController::animateTransition(const std::function<void()>& changes,
                                             void (TesselViewController::*ended)(),
                                             std::function<void(bool finished)> completion) {
    const unsigned turn = ++_transitionTurn;
    const std::weak_ptr<TesselViewController> weakSelf = self();
    ui::View::animate({.duration = zoomDuration}, changes,
                      [weakSelf, turn, ended, completion = std::move(completion)](bool) {
                          const auto controller = weakSelf.lock();
                          const bool isLast = controller && controller->_transitionTurn == turn;
                          if (isLast) (controller.get()->*ended)();
                          if (completion) completion(isLast);
                      });
}

// The canvas draws anew behind the picture before that goes.
void TesselViewController::cleanUpTransition(void (*finish)(TesselViewController& controller)) {
    _drawView->invalidateLayers();
    after(cleanUpDelay, [turn = _transitionTurn, finish](TesselViewController& controller) {
        if (controller._transitionTurn != turn) return;
        controller.dropTransitionView();
        controller._drawView->setHidden(false);
        finish(controller);
    });
}

}  // namespace kalim
