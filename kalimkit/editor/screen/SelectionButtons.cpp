#include "kalimkit/editor/screen/SelectionButtons.h"

#include <utility>

#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim {

namespace {

constexpr double burstDelay = 0.00001;
constexpr double showDuration = 0.2;
constexpr double slideDuration = 0.15;
constexpr double slideDelay = 0.05;
constexpr double editDuration = 0.3;
constexpr double fadeDuration = 0.2;
// The longest, slow as people may be.
constexpr double doubleClickTime = 0.6;

double now() {
    return ui::Environment::current().runLoop().now();
}

}  // namespace

// ---- making

void SelectionButtons::make(std::function<void()> edit, std::function<void()> remove) {
    _edit = makeButton("icon_button_edit", "编辑", std::move(edit));
    _delete = makeButton("icon_button_delete", "删除", std::move(remove));
}

std::shared_ptr<ui::Button> SelectionButtons::makeButton(const std::string& image,
                                                         const std::string& label,
                                                         std::function<void()> action) const {
    const auto button = ui::Button::initWithFrame({});
    button->setBackgroundImage(imageNamedForFramework(image));
    button->setAccessibilityLabel(ui::Environment::current().localizedString(label));
    button->addAction(ui::ControlEvent::TouchUpInside,
                      [run = _stage.whileThere(std::move(action))](ui::Control&) { run(); });
    button->setHidden(true);
    _stage.chrome()->addSubview(button);
    return button;
}

// ---- coming and going

void SelectionButtons::selectionChanged(bool hasSelection) {
    _picture.selectionChanged(hasSelection);
    if (_panel.isUp()) _panel.showWhetherPensApply();
    if (std::exchange(_isLocked, true)) return;
    _stage.after(burstDelay, [this] {
        _isLocked = false;
        move();
    });
}

void SelectionButtons::move() {
    const bool isWanted = _picture.hasSelection();
    if (!_edit || _target || _isOut == isWanted) return;
    // A panel that is up is in their place.
    if (isWanted && _panel.state() != EditorPanel::State::Closed) return;
    moveTo(isWanted);
}

void SelectionButtons::moveTo(bool isOut) {
    _target = isOut;
    if (isOut) {
        for (const auto& button : {_edit, _delete}) {
            button->setHidden(false);
            button->setAlpha(0);
        }
        _shift = 0;
        _stage.layout();
    }
    ui::View::animate({.duration = showDuration}, [this, isOut] {
        _edit->setAlpha(isOut ? 1 : 0);
        _delete->setAlpha(isOut ? 1 : 0);
        _pen.view()->setAlpha(isOut ? 0 : 1);
    });
    ui::View::animate(
        {.duration = slideDuration, .delay = slideDelay},
        [this, isOut] {
            _shift = isOut ? configViewDistance : 0;
            _stage.layout();
        },
        _stage.atEnd([this, isOut] {
            _target = std::nullopt;
            _isOut = isOut;
            move();
        }));
}

void SelectionButtons::fade(double alpha) {
    // They are covered by the panel, and come back with the end of that if at all.
    if (_isEditing) return;
    ui::View::animate({.duration = fadeDuration}, [this, alpha] {
        _edit->setAlpha(alpha);
        _delete->setAlpha(alpha);
    });
}

// ---- editing

void SelectionButtons::edit(std::function<void()> then) {
    _isEditing = true;
    _editTime = now();
    _pen.view()->setHidden(true);
    // The second tap of two quick ones would deselect what is to be edited.
    _picture.canvas()->setUserInteractionEnabled(false);
    ui::View::animate(
        {.duration = editDuration},
        [this] {
            _edit->setAlpha(0);
            _delete->setAlpha(0);
            _shift = 0;
            _stage.layout();
            _pen.view()->setAlpha(1);
        },
        _stage.atEnd([this, then = std::move(then)] {
            _picture.canvas()->setUserInteractionEnabled(true);
            then();
        }));
}

bool SelectionButtons::isDoubleClicked() const {
    return _isEditing && now() - _editTime < doubleClickTime;
}

}  // namespace kalim
