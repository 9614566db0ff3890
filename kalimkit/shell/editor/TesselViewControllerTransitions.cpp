#include <algorithm>
#include <cstddef>
#include <utility>

#include "kalimkit/shell/editor/TesselViewController.h"
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

// Where the canvas shows a rectangle of its own, with the scale of the canvas.
void TesselViewController::placeTransitionViewOnCanvas(const gfx::Rect& rect) {
    const gfx::Rect shown = _drawView->mViewTransform().apply(rect);
    const double scale = _drawView->getScale();
    const gfx::Size size = shown.size * (1 / scale);
    placeTransitionView({shown.center() - gfx::Point{size.width / 2, size.height / 2}, size},
                        scale);
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
            placeTransitionViewOnCanvas(_drawView->bgImgRect());
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

void TesselViewController::startAnimateOut(const gfx::Rect& target) {
    if (_isImageCroped) return;
    const auto alive = self();
    view()->layoutIfNeeded();
    _needInitAnimate = true;
    makeTransitionView(_drawView->exportImage());
    // The picture, and what was drawn beyond it.
    placeTransitionViewOnCanvas(_drawView->ctxRect());
    insertTransitionView();
    _drawView->setHidden(true);
    log("###### startScaleAnimate out start", "startAnimateOut:");
    animateTransition(
        [this, &target] {
            _toolView->setAlpha(0);
            // It keeps its scale.
            _viewAnimateImageView->setBounds({{}, target.size});
            _viewAnimateImageView->setCenter(target.center());
        },
        &TesselViewController::didAnimateOut);
}

void TesselViewController::didAnimateOut() {
    cleanUpTransition([](TesselViewController& controller) {
        controller._needInitAnimate = false;
        controller.log("###### startScaleAnimate out end", "startAnimateOut:");
    });
}

void TesselViewController::animateTransition(const std::function<void()>& changes,
                                             void (TesselViewController::*ended)()) {
    const unsigned turn = ++_transitionTurn;
    const std::weak_ptr<TesselViewController> weakSelf = self();
    ui::View::animate({.duration = zoomDuration}, changes, [weakSelf, turn, ended](bool) {
        const auto controller = weakSelf.lock();
        if (controller && controller->_transitionTurn == turn) (controller.get()->*ended)();
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
