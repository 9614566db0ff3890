#include "kalimkit/crop/EditImageCropToolBarView.h"

#include <algorithm>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/ui/environment/Environment.h"

namespace kalim {

namespace {

constexpr double sideMargin = 10;
constexpr double buttonWidth = 60;
constexpr double revertWidth = 50;
constexpr double ruleHeight = 0.5;
// The duration is seconds.
constexpr double fadeDuration = 0.3;

}  // namespace

// ---- making

std::shared_ptr<EditImageCropToolBarView> EditImageCropToolBarView::init() {
    struct Constructible : EditImageCropToolBarView {};
    const std::shared_ptr<EditImageCropToolBarView> bar = std::make_shared<Constructible>();
    bar->init(gfx::Rect{});
    return bar;
}

void EditImageCropToolBarView::init(const gfx::Rect& frame) {
    View::init(frame);
    setAlpha(0);
    setAccessibilityRole(ui::AccessibilityRole::Group);
    setAccessibilityLabel(ui::Environment::current().localizedString("裁剪工具栏"));
    using Delegate = EditImageCropToolBarDelegate;
    _bottomBackgroundView = ui::View::initWithFrame({});
    _bottomBackgroundView->setBackgroundColor(gfx::makeColor(0, 0, 0, 0.85));
    _topRule = ui::View::initWithFrame({});
    _topRule->setBackgroundColor(gfx::makeColor(1, 1, 1, 0.25));
    _bottomBackgroundView->addSubview(_topRule);
    addSubview(_bottomBackgroundView);
    _cancelBtn = makeButton("取消", "icon_tool_close", &Delegate::onCropToolBarCancelBtnClicked);
    _revertBtn = makeButton("还原", &Delegate::onCropToolBarRevertBtnClicked);
    _revertBtn->setTitle(_revertBtn->accessibilityLabel());
    _revertBtn->setTitleFont({"", 16});
    _revertBtn->setTitleColor(gfx::makeColor(1, 1, 1));
    _revertBtn->setTitleColor(gfx::makeColor(1, 1, 1, 0.4), ui::ControlState::Disabled);
    _doneBtn = makeButton("完成", "icon_tool_confirm", &Delegate::onCropToolBarDoneBtnClicked);
    _rotateBtn =
        makeButton("旋转", "icon_tool_rotate_crop", &Delegate::onCropToolBarRotateBtnClicked);
    canRevertEnable(false);
}

std::shared_ptr<ui::Button> EditImageCropToolBarView::makeButton(const std::string& label,
                                                                 Message message) {
    const std::shared_ptr<ui::Button> button = ui::Button::initWithFrame({});
    button->setAccessibilityLabel(ui::Environment::current().localizedString(label));
    const auto weakSelf = weak_from_this();
    button->addAction(ui::ControlEvent::TouchUpInside, [weakSelf, message](ui::Control&) {
        const auto bar = std::static_pointer_cast<EditImageCropToolBarView>(weakSelf.lock());
        const auto delegate = bar ? bar->delegate() : nullptr;
        if (delegate) ((*delegate).*message)();
    });
    addSubview(button);
    return button;
}

std::shared_ptr<ui::Button> EditImageCropToolBarView::makeButton(const std::string& label,
                                                                 const std::string& image,
                                                                 Message message) {
    const std::shared_ptr<ui::Button> button = makeButton(label, message);
    button->setImage(imageNamedForFramework(image));
    return button;
}

void EditImageCropToolBarView::layoutSubviews() {
    const auto [width, height] = bounds().size;
    const double below = superview() ? superview()->bounds().maxY() - frame().maxY() : 0;
    _bottomBackgroundView->setFrame({0, 0, width, height + std::max(below, 0.0)});
    _topRule->setFrame({0, 0, width, ruleHeight});
    const ui::EdgeInsets safe = safeAreaInsets();
    const double left = safe.left + sideMargin;
    const double right = width - safe.right - sideMargin;
    _cancelBtn->setFrame({left, 0, buttonWidth, height});
    // Words of some languages are longer.
    const double wanted = std::max(_revertBtn->intrinsicContentSize().width, revertWidth);
    const double revert = std::clamp(right - left - 2 * buttonWidth, 0.0, wanted);
    _revertBtn->setFrame({(left + right - revert) / 2, 0, revert, height});
    _doneBtn->setFrame({right - buttonWidth, 0, buttonWidth, height});
    _rotateBtn->setFrame({left, -height, buttonWidth, height});
}

// ---- what the owner says

void EditImageCropToolBarView::canRevertEnable(bool enable) {
    _revertBtn->setEnabled(enable);
}

void EditImageCropToolBarView::hideRotateBtnWithAnimation(bool hide, bool animated) {
    const auto change = [this, hide] { _rotateBtn->setAlpha(hide ? 0 : 1); };
    if (!animated) return change();
    ui::AnimationOptions options;
    options.duration = fadeDuration;
    ui::View::animate(options, change);
}

std::shared_ptr<ui::View> EditImageCropToolBarView::hitTest(gfx::Point p) {
    const bool takesTouches = !isHidden() && alpha() > 0 && isUserInteractionEnabled();
    // As displayed at this moment: one that fades in or out is not to be hit.
    const bool isShownFully = _rotateBtn->alpha() == 1 && _rotateBtn->shownAlpha() == 1;
    if (takesTouches && isShownFully && mirrored(_rotateBtn->frame()).contains(p))
        return _rotateBtn;
    return View::hitTest(p);
}

}  // namespace kalim
