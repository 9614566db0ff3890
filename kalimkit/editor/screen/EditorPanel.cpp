#include "kalimkit/editor/screen/EditorPanel.h"

#include <utility>

#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim {

namespace {

constexpr int confirmButtonTag = 100001;
constexpr double slideDuration = 0.15;
constexpr double slideDelay = 0.05;
constexpr double settleDuration = 0.1;
// The pen button takes so long on its way under the check mark.
constexpr double penZoomDuration = 0.07;
constexpr double checkMarkDuration = 0.5;

}  // namespace

// ---- making

void EditorPanel::makeMask(std::weak_ptr<QNTMaskViewDelegate> delegate) {
    _mask = QNTMaskView::init();
    _mask->setBackgroundColor(nullptr);
    _mask->setHidden(true);
    _mask->setDelegate(std::move(delegate));
    _stage.chrome()->addSubview(_mask);
}

void EditorPanel::make(std::weak_ptr<ui::GestureDelegate> delegate, std::function<void()> tapped,
                       std::function<void()> confirmed) {
    _view = ui::View::initWithFrame({});
    const auto tap = std::make_shared<ui::TapGestureRecognizer>();
    tap->setDelegate(std::move(delegate));
    tap->setHandler(
        [tapped = _stage.whileThere(std::move(tapped))](ui::GestureRecognizer& recognizer) {
            if (recognizer.state() == ui::GestureState::Ended) tapped();
        });
    _view->addGestureRecognizer(tap);
    _view->setHidden(true);
    _stage.chrome()->addSubview(_view);

    _confirmButton = TesselConfirmButton::init();
    _confirmButton->setTag(confirmButtonTag);
    _confirmButton->addAction(
        ui::ControlEvent::TouchUpInside,
        [confirmed = _stage.whileThere(std::move(confirmed))](ui::Control&) { confirmed(); });
    _confirmButton->setHidden(true);
    _stage.chrome()->addSubview(_confirmButton);
}

// ---- opening

void EditorPanel::open() {
    showWhetherPensApply();
    // The check mark covers it.
    _pen.view()->setAccessibilityHidden(true);
    _pen.ring(false);
    _state = State::Opening;
    shrink();
    _pen.view()->zoomOutWithDuration(penZoomDuration);

    ui::View::animate({.duration = slideDuration, .allowsUserInteraction = true}, [this] {
        _shift = 0;
        _stage.layout();
    });
    ui::View::animate(
        {.duration = slideDuration, .delay = slideDelay, .allowsUserInteraction = true},
        [this] {
            _confirmButton->setAlpha(1);
            _confirmButton->ApperaWithDuration(checkMarkDuration);
            _mask->setAlpha(1);
            _view->setAlpha(1);
            _view->setTransform(gfx::AffineTransform::scaling(1.03, 1.03));
            _stage.layout();
        },
        atEnd(&EditorPanel::didOpen));
}

// Where it starts from.
void EditorPanel::shrink() {
    _view->setHidden(false);
    _mask->setHidden(false);
    _mask->setAlpha(0);
    _view->setAlpha(0);
    _confirmButton->setAlpha(0);
    _shift = panelSlide;
    _stage.layout();
    _view->setTransform(gfx::AffineTransform::scaling(0.5, 0.5));
    _confirmButton->setHidden(false);
}

// Ends a way that begins now, unless the next one comes first.
std::function<void(bool)> EditorPanel::atEnd(void (EditorPanel::*ended)()) {
    return _stage.atEnd([this, way = ++_way, ended] {
        if (_way == way) (this->*ended)();
    });
}

void EditorPanel::didOpen() {
    _state = State::Open;
    _restedOpen = true;
    ui::View::animate({.duration = settleDuration, .allowsUserInteraction = true},
                      [this] { _view->setTransform({}); });
}

// ---- closing

void EditorPanel::close() {
    if (_state == State::Closing) return;
    _state = State::Closing;
    _pen.view()->setAccessibilityHidden(false);
    _pen.ring(true);
    _picture.canvas()->selectNone();
    _pen.view()->setHidden(false);
    _confirmButton->DisApperaWithDuration(slideDuration);

    ui::View::animate(
        {.duration = slideDuration, .delay = slideDelay, .allowsUserInteraction = true}, [this] {
            _shift = panelSlide;
            _stage.layout();
        });
    ui::View::animate(
        {.duration = slideDuration, .allowsUserInteraction = true},
        [this] {
            _mask->setAlpha(0);
            _view->setAlpha(0);
            _confirmButton->setAlpha(0);
            _view->setTransform(gfx::AffineTransform::scaling(0.5, 0.5));
            _stage.layout();
        },
        atEnd(&EditorPanel::didClose));
}

void EditorPanel::drop() {
    if (_state == State::Closed) return;
    // No way that is under way has an end any more.
    ++_way;
    _shift = panelSlide;
    _pen.view()->setAccessibilityHidden(false);
    _pen.view()->setHidden(false);
    _confirmButton->setHidden(true);
    didClose();
}

void EditorPanel::didClose() {
    showWhetherPensApply();
    _state = State::Closed;
    _restedOpen = false;
    _view->setHidden(true);
    _view->setTransform({});
    _mask->setHidden(true);
    _pickers.fold();
    _didClose();
}

void EditorPanel::showWhetherPensApply() {
    _pickers.setPensEnabled(!_picture.hasSelection());
}

}  // namespace kalim
