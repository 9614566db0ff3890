#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/AnimationOptions.h"

namespace kalim {

void TesselViewController::seletedToolsStateChanged(bool hasSelection) {
    _isConfigViewWillOut = _elementSelected = hasSelection;
    if (isPanelUp()) setPenpopEnable();
    if (_lockConfigView) return;
    _lockConfigView = true;
    // A burst of changes makes for one animation.
    after(0.00001, [](TesselViewController& controller) {
        controller._lockConfigView = false;
        controller.animateEditShape();
    });
}

void TesselViewController::animateEditShape() {
    // While the buttons move, the end of that looks at what is wanted by then.
    if (!_configViewEdit || _configViewTarget || _isConfigViewOut == _isConfigViewWillOut) return;
    // An open panel is in their place.
    if (_isConfigViewWillOut && (_showPanel || _isAnimation)) return;
    moveConfigViews(_isConfigViewWillOut);
}

void TesselViewController::moveConfigViews(bool isOut) {
    _configViewTarget = isOut;
    if (isOut) {
        for (const auto& button : {_configViewEdit, _configViewDelete}) {
            button->setHidden(false);
            button->setAlpha(0);
        }
        _configShift = 0;
        layout();
    }
    ui::View::animate({.duration = 0.2}, [this, isOut] {
        _configViewEdit->setAlpha(isOut ? 1 : 0);
        _configViewDelete->setAlpha(isOut ? 1 : 0);
        _penView->setAlpha(isOut ? 0 : 1);
    });
    const std::weak_ptr<TesselViewController> weakSelf = self();
    ui::View::animate(
        {.duration = 0.15, .delay = 0.05},
        [this, isOut] {
            _configShift = isOut ? configViewDistance : 0;
            layout();
        },
        [weakSelf, isOut](bool) {
            const auto controller = weakSelf.lock();
            if (!controller) return;
            controller->_configViewTarget = std::nullopt;
            controller->_isConfigViewOut = isOut;
            controller->animateEditShape();
        });
}

void TesselViewController::clickConfigEdit() {
    const auto alive = self();
    _isEditingSelection = true;
    _editTapTime = ui::Environment::current().runLoop().now();
    _penView->setHidden(true);
    // The second tap of two quick ones would deselect what is to be edited.
    _drawView->setUserInteractionEnabled(false);
    const std::weak_ptr<TesselViewController> weakSelf = self();
    ui::View::animate(
        {.duration = 0.3},
        [this] {
            _configViewEdit->setAlpha(0);
            _configViewDelete->setAlpha(0);
            _configShift = 0;
            layout();
            _penView->setAlpha(1);
        },
        [weakSelf](bool) {
            const auto controller = weakSelf.lock();
            if (!controller) return;
            controller->_drawView->setUserInteractionEnabled(true);
            controller->clickAtPenView();
        });
}

void TesselViewController::clickDelete() {
    const auto alive = self();
    _drawView->deleteSelectedTools();
}

}  // namespace kalim
