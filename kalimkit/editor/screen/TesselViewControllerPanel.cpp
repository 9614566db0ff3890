#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "kalimkit/editor/screen/EditorTables.h"
#include "kalimkit/editor/screen/TesselViewController.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/motion/AnimationOptions.h"
#include "kalimkit/ui/view/Touch.h"

namespace kalim {

namespace {

constexpr int colorPickerTag = 11;
constexpr int sizePickerTag = 22;
constexpr double foldDuration = 0.3;
constexpr double slideDuration = 0.15;
constexpr double slideDelay = 0.05;
constexpr double settleDuration = 0.1;
constexpr double fadeDuration = 0.2;
constexpr double popDuration = 0.15;
// Of the pen button while something is drawn under it.
constexpr double fadedAlpha = 0.2;
// The longest, slow as people may be.
constexpr double doubleClickTime = 0.6;

}  // namespace

// ---- set-up

void TesselViewController::initData() {
    if (!_colorViews.empty()) return;
    for (const std::string_view color : editorColors())
        _colorViews.push_back(TesselDot::initWithColorShowBorder(colorWithHexString(color), false));
    for (const unsigned size : editorSizes())
        _sizeViews.push_back(TesselDot::initWithSize(size));
    for (const unsigned pen : editorPens())
        _penViews.push_back(TesselDot::initWithPen(pen));
    for (const unsigned shape : editorShapes())
        _shapeViews.push_back(TesselDot::initWithShape(shape));
}

void TesselViewController::initSubviews2() {
    if (_penPopView) return;
    _colorPopView = makePicker(_colorViews, colorPickerTag, 0);
    _sizePopView = makePicker(_sizeViews, sizePickerTag, 2);
    _penPopView = makePicker(_penViews, 0, 0);
    _colorPopView->setIsFold(true);
    _sizePopView->setIsFold(true);
    _configViewEdit =
        makeConfigButton("icon_button_edit", "编辑", &TesselViewController::clickConfigEdit);
    _configViewDelete =
        makeConfigButton("icon_button_delete", "删除", &TesselViewController::clickDelete);
    layout();
}

std::shared_ptr<TesselPopView> TesselViewController::makePicker(const Dots& dots, int tag,
                                                                int selectIndex) {
    const auto picker = TesselPopView::initWithArraysDirection(dots, 1);
    picker->setTag(tag);
    picker->setSelectIndex(selectIndex);
    picker->setDelegate(self());
    picker->setTakesTouchesWhileFolding(_forgiving);
    _panelView->addSubview(picker);
    return picker;
}

std::shared_ptr<ui::Button> TesselViewController::makeConfigButton(
    const std::string& image, const std::string& label, void (TesselViewController::*action)()) {
    const auto button = ui::Button::initWithFrame({});
    button->setBackgroundImage(imageNamedForFramework(image));
    button->setAccessibilityLabel(ui::Environment::current().localizedString(label));
    const std::weak_ptr<TesselViewController> weakSelf = self();
    button->addAction(ui::ControlEvent::TouchUpInside, [weakSelf, action](ui::Control&) {
        if (const auto controller = weakSelf.lock()) (*controller.*action)();
    });
    button->setHidden(true);
    view()->addSubview(button);
    return button;
}

// ---- folding

void TesselViewController::resetOffset() {
    if (_penPopView) setFolded(true, true, true);
}

void TesselViewController::setFolded(bool color, bool size, bool isInset) {
    _colorPopView->setIsFold(color);
    _sizePopView->setIsFold(size);
    _arePickersInset = isInset;
    ui::View::animate({.duration = foldDuration, .allowsUserInteraction = _forgiving},
                      [this] { layout(); });
}

void TesselViewController::clickAtPop(TesselPopView& picker) {
    if (picker.tag() != colorPickerTag && picker.tag() != sizePickerTag) return;
    if (!picker.isFold()) return resetOffset();
    const bool isColor = picker.tag() == colorPickerTag;
    setFolded(!isColor, isColor, false);
}

bool TesselViewController::shouldReceiveTouch(const ui::GestureRecognizer& /*recognizer*/,
                                              const ui::Touch& touch) {
    // A picker that is disabled takes no touches, but the place is its own all the same.
    return std::ranges::none_of(
        std::array{_colorPopView, _sizePopView, _penPopView}, [&](const auto& picker) {
            return picker && picker->bounds().contains(touch.locationIn(picker.get()));
        });
}

// ---- opening and closing

void TesselViewController::clickAtConfirm() {
    if (!_isAnimation) hidePop();
}

void TesselViewController::clickAtMaskView() {
    // Where the edit button was: the second half of a double click on it.
    const double sinceEdit = ui::Environment::current().runLoop().now() - _editTapTime;
    if (_forgiving && _isEditingSelection && sinceEdit < doubleClickTime) return;
    hidePop();
}

void TesselViewController::didDrawStarted() {
    if (isPanelUp()) hidePop();
}

void TesselViewController::setPenpopEnable() {
    if (_penPopView) _penPopView->setEnable(!_elementSelected);
}

// Where the panel starts from when it opens.
void TesselViewController::shrinkPanel() {
    _panelView->setHidden(false);
    _maskView->setHidden(false);
    _maskView->setAlpha(0);
    _panelView->setAlpha(0);
    _confirmButton->setAlpha(0);
    _panelShift = panelSlide;
    layout();
    _panelView->setTransform(gfx::AffineTransform::scaling(0.5, 0.5));
    _confirmButton->setHidden(false);
}

void TesselViewController::showPop() {
    const auto alive = self();
    setPenpopEnable();
    // The check mark covers it.
    _penView->setAccessibilityHidden(true);
    _penView->ringAnimationOp(0);
    _isAnimation = true;
    _isPanelClosing = false;
    shrinkPanel();
    _penView->zoomOutWithDuration(0.07);

    ui::View::animate({.duration = slideDuration, .allowsUserInteraction = true}, [this] {
        _panelShift = 0;
        layout();
    });
    ui::View::animate(
        {.duration = slideDuration, .delay = slideDelay, .allowsUserInteraction = true},
        [this] {
            _confirmButton->setAlpha(1);
            _confirmButton->ApperaWithDuration(0.5);
            _maskView->setAlpha(1);
            _panelView->setAlpha(1);
            _panelView->setTransform(gfx::AffineTransform::scaling(1.03, 1.03));
            layout();
        },
        panelMoved(&TesselViewController::panelDidOpen));
}

// Ends an opening or closing that begins now, unless the next one comes first.
std::function<void(bool)> TesselViewController::panelMoved(void (TesselViewController::*ended)()) {
    const std::weak_ptr<TesselViewController> weakSelf = self();
    return [weakSelf, turn = ++_panelTurn, ended](bool) {
        const auto controller = weakSelf.lock();
        if (controller && controller->_panelTurn == turn) (controller.get()->*ended)();
    };
}

void TesselViewController::panelDidOpen() {
    _showPanel = true;
    ui::View::animate({.duration = settleDuration, .allowsUserInteraction = true},
                      [this] { _panelView->setTransform({}); });
    _isAnimation = false;
}

void TesselViewController::hidePop() {
    // It closes already.
    if (_isPanelClosing) return;
    const auto alive = self();
    _isPanelClosing = true;
    _penView->setAccessibilityHidden(false);
    _penView->ringAnimationOp(1);
    _drawView->selectNone();
    _isAnimation = true;
    _penView->setHidden(false);
    _confirmButton->DisApperaWithDuration(slideDuration);

    ui::View::animate(
        {.duration = slideDuration, .delay = slideDelay, .allowsUserInteraction = true}, [this] {
            _panelShift = panelSlide;
            layout();
        });
    ui::View::animate(
        {.duration = slideDuration, .allowsUserInteraction = true},
        [this] {
            _maskView->setAlpha(0);
            _panelView->setAlpha(0);
            _confirmButton->setAlpha(0);
            _panelView->setTransform(gfx::AffineTransform::scaling(0.5, 0.5));
            layout();
        },
        panelMoved(&TesselViewController::panelDidClose));
}

void TesselViewController::panelDidClose() {
    setPenpopEnable();
    _showPanel = false;
    _isPanelClosing = _isEditingSelection = false;
    _panelView->setHidden(true);
    _panelView->setTransform({});
    _maskView->setHidden(true);
    _isAnimation = false;
    resetOffset();
    animateEditShape();
}

// ---- pen button

void TesselViewController::showPenview() {
    if (standInForPenView()) return;
    ui::View::performWithoutAnimation([this] {
        _penView->setAlpha(0);
        _penView->setTransform(gfx::AffineTransform::scaling(0.5, 0.5));
    });
    const std::weak_ptr<TesselViewController> weakSelf = self();
    ui::View::animate(
        {.duration = popDuration, .allowsUserInteraction = true},
        [this] {
            _penView->setAlpha(1);
            _penView->setTransform(gfx::AffineTransform::scaling(1.1, 1.1));
        },
        [weakSelf](bool) {
            const auto controller = weakSelf.lock();
            if (!controller) return;
            ui::View::animate({.duration = settleDuration, .allowsUserInteraction = true},
                              [&controller] { controller->_penView->setTransform({}); });
        });
}

void TesselViewController::didDrawOver(const std::optional<gfx::Rect>& viewRect) {
    if (!_laysPictureBetweenBars) return;
    gfx::Rect buttons = _penView->frame();
    if (standInForPenView())
        buttons = _configViewEdit->frame().unionWith(_configViewDelete->frame());
    const bool isUnder =
        viewRect && _drawView->convertRectTo(*viewRect, view().get()).intersects(buttons);
    if (std::exchange(_isDrawnUnderPen, isUnder) == isUnder) return;
    fadeTool(isUnder ? fadedAlpha : 1);
}

void TesselViewController::fadeTool(double alpha) {
    const bool isOut = standInForPenView();
    // They are covered by the panel, and come back with the end of that if at all.
    if (isOut && _isEditingSelection) return;
    ui::View::animate({.duration = fadeDuration}, [this, alpha, isOut] {
        if (!isOut) return _penView->setAlpha(alpha);
        _configViewEdit->setAlpha(alpha);
        _configViewDelete->setAlpha(alpha);
    });
}

}  // namespace kalim
