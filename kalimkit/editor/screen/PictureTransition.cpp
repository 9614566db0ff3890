#include "kalimkit/editor/screen/PictureTransition.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "kalimkit/tool/MDrawLogUtil.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim {

namespace {

constexpr double zoomDuration = 0.3;
constexpr double cleanUpDelay = 0.1;

void log(const std::string& text, const char* method) {
    MDrawLogUtil::sharedInstance().logInfoMethodName(text, method);
}

}  // namespace

// ---- the picture that moves

void PictureTransition::makeView(const gfx::ImageRef& image) {
    dropView();
    _view = ui::ImageView::initWithFrame({});
    _view->setSides(ui::View::Sides::Fixed);
    _view->setImage(image);
}

void PictureTransition::dropView() {
    if (const auto picture = std::exchange(_view, nullptr)) picture->removeFromSuperview();
}

// The rectangle is that of the picture before it is scaled about its centre.
void PictureTransition::place(const gfx::Rect& rect, double scale) {
    _view->setBounds({{}, rect.size});
    _view->setCenter(rect.center());
    _view->setTransform(gfx::AffineTransform::scaling(scale, scale));
}

// Where the picture is seen in the end, at a scale.
void PictureTransition::placeInto(const gfx::Rect& seen, double scale) {
    const gfx::Size size = seen.size * (1 / scale);
    place({seen.center() - gfx::Point{size.width / 2, size.height / 2}, size}, scale);
}

void PictureTransition::insertView() {
    _view->removeFromSuperview();
    const auto& views = _stage.view().subviews();
    const auto bars = std::ranges::find(views, _stage.chrome());
    _stage.view().insertSubview(_view, static_cast<std::size_t>(bars - views.begin()));
}

// ---- in

void PictureTransition::setStart(bool isWanted, const gfx::Rect& fromRect, double fromScale) {
    _isNeeded = isWanted;
    _fromRect = fromRect;
    _fromScale = fromScale;
}

void PictureTransition::prepare() {
    if (!_isNeeded) return;
    makeView(_picture.snipImage());
    place(_fromRect, _fromScale);
    _stage.view().addSubview(_view);
}

void PictureTransition::start(const std::function<void()>& alongside) {
    _stage.view().layoutIfNeeded();
    makeView(_picture.snipImage());
    place(_fromRect, _fromScale);
    insertView();
    log("###### startScaleAnimate In start", "startAnimateIn:");
    _bar->setAlpha(0);
    animate(
        [this, &alongside] {
            if (alongside) alongside();
            _bar->setAlpha(1);
            const MDrawView& canvas = *_picture.canvas();
            placeInto(_picture.shown(canvas.bgImgRect()), canvas.getScale());
        },
        &PictureTransition::didStart);
}

void PictureTransition::didStart() {
    _isNeeded = false;
    _bar->setAlpha(1);
    cleanUp(&PictureTransition::finishStart);
}

void PictureTransition::finishStart() {
    log("###### startScaleAnimate In end", "startAnimateIn:");
}

// ---- out

void PictureTransition::leave(const gfx::Rect& target,
                              std::function<void(bool finished)> completion) {
    MDrawView& canvas = *_picture.canvas();
    _stage.view().layoutIfNeeded();
    _isNeeded = true;
    makeView(canvas.exportImage());
    // The picture, and what was drawn beyond it.
    const double scale = canvas.getScale();
    placeInto(_picture.shown(canvas.ctxRect()), scale);
    insertView();
    canvas.setHidden(true);
    log("###### startScaleAnimate out start", "startAnimateOut:");
    animate(
        [&] {
            _bar->setAlpha(0);
            // It keeps its scale.
            placeInto(target, scale);
        },
        &PictureTransition::didLeave, std::move(completion));
}

void PictureTransition::didLeave() {
    cleanUp(&PictureTransition::finishLeave);
}

void PictureTransition::finishLeave() {
    // Until the host has taken the editor away, nothing comes back that has gone.
    _picture.canvas()->setHidden(_stage.isForgiving() && _stage.window());
    _isNeeded = false;
    log("###### startScaleAnimate out end", "startAnimateOut:");
}

// ---- both

void PictureTransition::animate(const std::function<void()>& changes,
                                void (PictureTransition::*ended)(),
                                std::function<void(bool finished)> completion) {
    // The host is told in any case, and the editor may be gone by then.
    ui::View::animate({.duration = zoomDuration}, changes,
                      [this, weakLife = _stage.life(), way = ++_way, ended,
                       completion = std::move(completion)](bool) {
                          const auto alive = weakLife.lock();
                          const bool isLast = alive && _way == way;
                          if (isLast) (this->*ended)();
                          if (completion) completion(isLast);
                      });
}

// The canvas draws anew behind the picture before that goes.
void PictureTransition::cleanUp(void (PictureTransition::*finish)()) {
    _picture.canvas()->invalidateLayers();
    _stage.after(cleanUpDelay, [this, way = _way, finish] {
        if (_way != way) return;
        dropView();
        _picture.canvas()->setHidden(false);
        (this->*finish)();
    });
}

}  // namespace kalim
