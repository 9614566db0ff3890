#include "kalimkit/ui/control/AlertView.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/gesture/GestureRecognizer.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

// Lengths are points.
constexpr double sideInset = 16;
constexpr double verticalInset = 20;
constexpr double textGap = 4;
constexpr double buttonHeight = 44;
constexpr double panelRadius = 13;
// That a long message leaves free above and below the panel.
constexpr double windowInset = 24;
// This much stays beside a panel in a narrow window.
constexpr double leastSideInset = 8;
const gfx::Font titleFont{"", 17, true};
const gfx::Font messageFont{"", 13};
const gfx::Font buttonFont{"", 17};
constexpr gfx::Color dimColor{0, 0, 0, 0.4};
constexpr gfx::Color panelColor{0.97, 0.97, 0.97, 1};
constexpr gfx::Color pressedColor{0.87, 0.87, 0.88, 1};
constexpr gfx::Color chosenColor{0.8, 0.89, 1, 1};
constexpr gfx::Color separatorColor{0.78, 0.78, 0.8, 1};
constexpr gfx::Color tintColor{0, 0.478, 1, 1};

// Shows a finger, or that the keys have chosen it, by its background.
class AlertButton : public Button {
public:
    static std::shared_ptr<AlertButton> make() {
        const std::shared_ptr<AlertButton> button(new AlertButton);
        button->init({});
        return button;
    }

protected:
    void stateDidChange() override {
        setBackgroundColor(isHighlighted() ? gfx::makeColor(pressedColor)
                           : isSelected()  ? gfx::makeColor(chosenColor)
                                           : nullptr);
        Button::stateDidChange();
    }

private:
    AlertButton() = default;
};

}  // namespace

// ---- making

std::shared_ptr<AlertView> AlertView::show(Window& window, const Alert& alert) {
    const std::shared_ptr<AlertView> view(new AlertView(alert));
    performWithoutAnimation([&] {
        view->init(window.rootView()->bounds());
        window.rootView()->addSubview(view);
        view->setFillsSuperview(true);
        view->layoutIfNeeded();
        view->setAlpha(0);
    });
    // It is modal from the first moment.
    animate({.duration = fadeDuration, .allowsUserInteraction = true}, [&] { view->setAlpha(1); });
    return view;
}

std::shared_ptr<AlertView> AlertView::topmostIn(const Window& window) {
    const auto& views = window.rootView()->subviews();
    for (auto view = views.rbegin(); view != views.rend(); ++view) {
        auto alert = std::dynamic_pointer_cast<AlertView>(*view);
        if (alert && !alert->_isDismissed) return alert;
    }
    return nullptr;
}

AlertView::AlertView(const Alert& alert) : _alert(alert) {}

void AlertView::init(const gfx::Rect& frame) {
    View::init(frame);
    setBackgroundColor(gfx::makeColor(dimColor));
    setMultipleTouchEnabled(true);
    _panel = View::initWithFrame({});
    _panel->setBackgroundColor(gfx::makeColor(panelColor));
    _panel->setCornerRadius(panelRadius);
    _panel->setClipsToBounds(true);
    addSubview(_panel);
    _title = addLabel(_alert.title, titleFont);
    _message = addLabel(_alert.message, messageFont);
    if (_alert.buttons.empty())
        _alert.buttons.push_back(Environment::current().localizedString("确定"));
    for (std::size_t i = 0; i < _alert.buttons.size(); ++i)
        addButton(i, _alert.buttons[i]);
    _choice.setButtons(_buttons, 0);
    setAccessibilityRole(AccessibilityRole::Dialog);
    setAccessibilityModal(true);
    setAccessibilityLabel(_alert.title.empty() ? _alert.message : _alert.title);
}

std::shared_ptr<Label> AlertView::addLabel(const std::string& text, const gfx::Font& font) {
    if (text.empty()) return nullptr;
    std::shared_ptr<Label> label = Label::initWithFrame({});
    label->setText(text);
    label->setFont(font);
    label->setNumberOfLines(0);
    _panel->addSubview(label);
    return label;
}

void AlertView::addButton(std::size_t index, const std::string& title) {
    const auto button = AlertButton::make();
    button->setTitle(title);
    button->setTitleFont(buttonFont);
    button->setTitleColor(gfx::makeColor(tintColor));
    button->setContentEdgeInsets({0, sideInset / 2, 0, sideInset / 2});
    // The alert owns its buttons.
    button->addAction(ControlEvent::TouchUpInside,
                      [this, index](Control&) { dismissWithButton(index); });
    _panel->addSubview(button);
    _buttons.push_back(button);
    _separators.push_back(View::initWithFrame({}));
    _separators.back()->setBackgroundColor(gfx::makeColor(separatorColor));
    _panel->addSubview(_separators.back());
}

// ---- answering

void AlertView::dismissWithButton(std::size_t button) {
    if (_isDismissed || button >= _buttons.size()) return;
    const auto alive = shared_from_this();
    _isDismissed = true;
    if (const auto completion = _alert.completion) completion(button);
    animate(
        {.duration = fadeDuration}, [this] { setAlpha(0); },
        [alive](bool /*finished*/) { alive->removeFromSuperview(); });
}

void AlertView::handleKey(std::string_view key, bool isRepeated) {
    if (_isDismissed) return;
    const auto alive = shared_from_this();
    if (key == "escape" && !isRepeated) return dismissWithButton(0);
    _choice.handleKey(key, isRepeated);
}

bool AlertView::admitsGesture(const GestureRecognizer& recognizer) const {
    return recognizer.view() && recognizer.view()->isDescendantOf(*this);
}

// ---- layout

void AlertView::layoutSubviews() {
    const double width = this->width() - 2 * sideInset;
    const double buttons = buttonHeight * (isRow() ? 1 : static_cast<double>(_buttons.size()));
    const double most = std::max(bounds().size.height - 2 * windowInset - buttons, 0.0);
    double y = verticalInset;
    for (const auto& label : {_title, _message}) {
        if (!label) continue;
        if (y > verticalInset) y += textGap;
        const double room = std::max(most - y - verticalInset, 0.0);
        const double height = std::min(label->sizeThatFits({width, 0}).height, room);
        label->setFrame({sideInset, y, width, height});
        y += height;
    }
    y += verticalInset;
    layoutButtons(y);
    const gfx::Size size{this->width(), y + buttons};
    // On whole points, so that text and separators stay sharp.
    _panel->setFrame({std::floor(bounds().midX() - size.width / 2),
                      std::floor(bounds().midY() - size.height / 2), size.width, size.height});
}

// Two that fit stand side by side.
bool AlertView::isRow() const {
    if (_buttons.size() != 2) return _buttons.size() == 1;
    return std::ranges::all_of(_buttons, [this](const auto& button) {
        return button->intrinsicContentSize().width <= width() / 2;
    });
}

double AlertView::width() const {
    return std::clamp(bounds().size.width - 2 * leastSideInset, 2 * sideInset, panelWidth);
}

void AlertView::layoutButtons(double top) {
    const double hairline = 1 / Environment::current().screen().scale;
    const bool sideBySide = isRow();
    const double width = this->width() / (sideBySide ? static_cast<double>(_buttons.size()) : 1);
    for (std::size_t i = 0; i < _buttons.size(); ++i) {
        const double x = sideBySide ? width * static_cast<double>(i) : 0;
        const double y = sideBySide ? top : top + buttonHeight * static_cast<double>(i);
        _buttons[i]->setFrame({x, y, width, buttonHeight});
        if (sideBySide && i > 0) {
            _separators[i]->setFrame({x, y, hairline, buttonHeight});
        } else {
            _separators[i]->setFrame({0, y, this->width(), hairline});
        }
    }
}

}  // namespace kalim::ui
