#include "kalimkit/editor/sheet/KLMActionsheetView.h"

#include <algorithm>
#include <utility>

#include "kalimkit/theme/ColorImages.h"
#include "kalimkit/theme/HexColor.h"
#include "kalimkit/theme/SafeArea.h"
#include "kalimkit/theme/TallPhone.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/gesture/TapGestureRecognizer.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

constexpr double buttonHeight = 52;
constexpr double buttonGap = 7;
constexpr double buttonInset = 14;
constexpr gfx::Size unlaidPanelSize{320, 380};
constexpr int cancelTag = 1;
constexpr int actionTag = 0;
constexpr unsigned chosenColor = 0xCCE3FF;

gfx::ColorRef dimColor(double alpha) {
    return gfx::makeColor(0, 0, 0, alpha);
}

gfx::Rect screenBounds() {
    const ui::Screen screen = ui::Environment::current().screen();
    return {0, 0, screen.nativeSize.width / screen.scale, screen.nativeSize.height / screen.scale};
}

}  // namespace

// ---- making

std::shared_ptr<KLMActionsheetView> KLMActionsheetView::initActionSheetCancelButtonTitleDelegate(
    const std::string& actionTitle, const std::string& cancelTitle,
    std::weak_ptr<KLMActionsheetViewDelegate> delegate) {
    const std::shared_ptr<KLMActionsheetView> sheet(new KLMActionsheetView(std::move(delegate)));
    sheet->init(screenBounds());
    sheet->addButton(cancelTitle, cancelTag, colorWithHex2(0xD92D21), 0);
    sheet->addButton(actionTitle, actionTag, gfx::makeColor(0, 0, 0), 1);
    return sheet;
}

void KLMActionsheetView::addAnswer(const std::string& title, int index) {
    addButton(title, index, gfx::makeColor(0, 0, 0), _buttons.size() - 1);
}

KLMActionsheetView::KLMActionsheetView(std::weak_ptr<KLMActionsheetViewDelegate> delegate)
    : _delegate(std::move(delegate)) {}

void KLMActionsheetView::init(const gfx::Rect& frame) {
    View::init(frame);
    setBackgroundColor(dimColor(0));
    setAccessibilityRole(ui::AccessibilityRole::Dialog);
    setAccessibilityModal(true);
    setAccessibilityLabel(ui::Environment::current().localizedString("关闭"));
    addBackdrop();
    _sheetPanel = ui::View::initWithFrame({{0, bounds().maxY()}, unlaidPanelSize});
    _sheetPanel->setBackgroundColor(colorWithHex2(0xE5E5E5));
    addSubview(_sheetPanel);
}

void KLMActionsheetView::addBackdrop() {
    _backdrop = ui::View::initWithFrame(bounds());
    const auto tap = std::make_shared<ui::TapGestureRecognizer>();
    tap->setHandler([weak = weak_from_this()](ui::GestureRecognizer&) {
        const auto sheet = std::static_pointer_cast<KLMActionsheetView>(weak.lock());
        if (sheet) sheet->animateOff();
    });
    _backdrop->addGestureRecognizer(tap);
    addSubview(_backdrop);
}

void KLMActionsheetView::addButton(const std::string& title, int tag, const gfx::ColorRef& color,
                                   std::size_t place) {
    const std::shared_ptr<ui::Button> button = ui::Button::initWithFrame({});
    button->setTitle(title);
    button->setTitleFont({"", 18});
    button->setTitleColor(color);
    button->setTitleColor(colorWithHex2Alpha(0x437DBA, 0.5), ui::ControlState::Disabled);
    button->setBackgroundImage(imageWithColor2(gfx::makeColor(1, 1, 1)));
    button->setBackgroundImage(highlightBackgroundImage2(), ui::ControlState::Highlighted);
    button->setBackgroundImage(imageWithColor2(colorWithHex2(chosenColor)),
                               ui::ControlState::Selected);
    button->setContentEdgeInsets({buttonInset, 0, buttonInset, 0});
    button->addAction(
        ui::ControlEvent::TouchUpInside, [weak = weak_from_this(), tag](ui::Control&) {
            const auto sheet = std::static_pointer_cast<KLMActionsheetView>(weak.lock());
            if (sheet) sheet->press(tag);
        });
    _sheetPanel->insertSubview(button, place);
    _buttons.insert(_buttons.begin() + static_cast<std::ptrdiff_t>(place), button);
    _tags.insert(_tags.begin() + static_cast<std::ptrdiff_t>(place), tag);
    _choice.setButtons(_buttons, _buttons.size() - 1);
}

// ---- showing

void KLMActionsheetView::showAlert() {
    ui::Window* const window = ui::Environment::current().keyWindow();
    if (window) showAlert(*window->rootView());
}

void KLMActionsheetView::showAlert(ui::View& view) {
    setFrame(view.bounds());
    view.addSubview(shared_from_this());
    setFillsSuperview(true);
    setNeedsLayout();
    layoutIfNeeded();
    animateOn();
}

void KLMActionsheetView::animateOn() {
    _isUp = true;
    setNeedsLayout();
    View::animate({.duration = slideDuration}, [this] {
        setBackgroundColor(dimColor(0.4));
        layoutIfNeeded();
    });
}

void KLMActionsheetView::animateOff() {
    if (_isGoing) return;
    _isGoing = true;
    _isUp = false;
    setNeedsLayout();
    View::animate(
        {.duration = slideDuration},
        [this] {
            setBackgroundColor(dimColor(0));
            layoutIfNeeded();
        },
        [weak = weak_from_this()](bool /*finished*/) {
            const auto sheet = std::static_pointer_cast<KLMActionsheetView>(weak.lock());
            if (sheet) sheet->finish();
        });
}

void KLMActionsheetView::finish() {
    _isGoing = false;
    if (const auto delegate = _delegate.lock()) {
        delegate->modalAlertPressedWithButtonIndex(*this, _buttonIndex);
    }
    removeFromSuperview();
}

void KLMActionsheetView::press(int tag) {
    if (_isGoing) return;
    _buttonIndex = tag;
    animateOff();
}

void KLMActionsheetView::setLayouter(Layouter layouter) {
    _layouter = std::move(layouter);
    setNeedsLayout();
}

// ---- keys and touches

void KLMActionsheetView::handleKey(std::string_view key, bool isRepeated) {
    if (_isGoing) return;
    const auto alive = shared_from_this();
    if (key == "escape" && !isRepeated) return animateOff();
    _choice.handleKey(key, isRepeated);
}

std::shared_ptr<ui::View> KLMActionsheetView::hitTest(gfx::Point p) {
    const auto hit = View::hitTest(p);
    return hit || isHidden() || !pointInside(p) ? hit : shared_from_this();
}

bool KLMActionsheetView::admitsGesture(const ui::GestureRecognizer& recognizer) const {
    return recognizer.view() && recognizer.view()->isDescendantOf(*this);
}

// ---- layout

void KLMActionsheetView::layoutSubviews() {
    _backdrop->setFrame(bounds());
    _layouter ? _layouter(*this, _isUp) : layoutPanel();
}

void KLMActionsheetView::layoutPanel() {
    double top = 0;
    for (const auto& button : _buttons) {
        const double room = button == _buttons.back() ? safeAreaInsets().bottom : 0;
        button->setContentEdgeInsets({buttonInset, 0, buttonInset + room, 0});
        button->setFrame({0, top, bounds().size.width, buttonHeight + room});
        top = button->frame().maxY() + buttonGap;
    }
    const double height = std::max(top - buttonGap, 0.0);
    const double bottom = bounds().maxY() + (_isUp ? 0 : height);
    _sheetPanel->setFrame({bounds().minX(), bottom - height, bounds().size.width, height});
}

// ---- properties

std::shared_ptr<ui::Button> KLMActionsheetView::buttonWithTag(int tag) const {
    const auto found = std::ranges::find(_tags, tag);
    if (found == _tags.end()) return nullptr;
    return _buttons[static_cast<std::size_t>(found - _tags.begin())];
}

bool KLMActionsheetView::isiPhoneX() const {
    return isTallPhone(ui::Environment::current().screen());
}

}  // namespace kalim
