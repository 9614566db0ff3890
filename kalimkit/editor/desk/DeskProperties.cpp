#include "kalimkit/editor/desk/DeskProperties.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/editor/desk/DeskBar.h"
#include "kalimkit/editor/desk/DeskLayout.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/ui/control/Label.h"
#include "kalimkit/ui/desk/ColorPicker.h"
#include "kalimkit/ui/desk/Menu.h"
#include "kalimkit/ui/desk/SegmentedControl.h"
#include "kalimkit/ui/desk/Slider.h"
#include "kalimkit/ui/desk/TextPrompt.h"
#include "kalimkit/ui/environment/LocalText.h"

namespace kalim {

namespace {

constexpr double sliderWidth = 90;
constexpr double countWidth = 36;
constexpr double countFont = 13;
// A slider has no more places than that.
constexpr double mostSteps = 200;

bool hasIcon(const std::string& name) {
    return imageNamedForFramework("icon_desk_" + name) != nullptr;
}

// Of a property, or of one of its choices: its own, or that of both names together.
std::string iconOf(const ToolProperty& property, std::string_view choice) {
    std::string stem(property.name);
    if (stem.ends_with('s')) stem.pop_back();
    for (const std::string& name : {std::string(choice), stem + std::string(choice)}) {
        if (!name.empty() && hasIcon(name)) return name;
    }
    return property.name == "heads" && choice == "none" ? "line" : std::string();
}

// What a slider is about stands beside it.
std::string sliderIconOf(const ToolProperty& property) {
    const std::string name(property.name == "zoom"   ? "zoomin"
                           : property.name == "dark" ? "spotlight"
                                                     : property.name);
    return hasIcon(name) ? name : std::string();
}

double numberOf(const std::optional<ToolPropertyValue>& value, double otherwise) {
    const double* const number = value ? std::get_if<double>(&*value) : nullptr;
    return number ? *number : otherwise;
}

std::string textOf(const std::optional<ToolPropertyValue>& value) {
    const std::string* const text = value ? std::get_if<std::string>(&*value) : nullptr;
    return text ? *text : std::string();
}

// ---- numbers

class SliderProperty : public DeskProperty {
public:
    SliderProperty(const ToolProperty& property, Chosen chosen)
        : DeskProperty(property, std::move(chosen)),
          _slider(ui::Slider::make(property.least, property.most)) {
        _slider->setFrame({0, 0, sliderWidth, ui::Slider::height});
        _slider->setTip(ui::hostText(property.text, property.english));
        if (property.step > 0) _slider->setStep(property.step);
        const bool isShare = property.least >= 0 && property.most <= 1;
        _slider->setSpeaker([isShare](double value) {
            if (isShare) return std::to_string(std::lround(value * 100)) + " %";
            const long tenths = std::lround(value * 10);
            return std::to_string(tenths / 10) +
                   (tenths % 10 ? "." + std::to_string(tenths % 10) : std::string());
        });
        _slider->setHandler([this](double value, bool isFinal) { choose(value, isFinal); });
        const std::string icon = sliderIconOf(property);
        if (icon.empty()) return;
        _icon = ui::DeskButton::make(icon);
        _icon->setUserInteractionEnabled(false);
        _icon->setAccessibilityHidden(true);
        _icon->setFrame({0, 0, iconSide, DeskLayout::buttonSide});
    }
    void show(const std::optional<ToolPropertyValue>& value) override {
        _slider->setValue(numberOf(value, property().usual));
    }
    std::vector<EditorShell::Named> views() const override {
        if (!_icon) return {{name(), _slider}};
        return {{name() + ".icon", _icon}, {name(), _slider}};
    }

private:
    static constexpr double iconSide = 26;
    std::shared_ptr<ui::DeskButton> _icon;
    std::shared_ptr<ui::Slider> _slider;
};

class CountedProperty : public DeskProperty {
public:
    CountedProperty(const ToolProperty& property, Chosen chosen)
        : DeskProperty(property, std::move(chosen)),
          _label(ui::Label::initWithFrame({0, 0, countWidth, DeskLayout::buttonSide})) {
        const std::string text = ui::hostText(property.text, property.english);
        _less = makeDeskButton("minus", text + " −", {}, [this] { change(-1); });
        _more = makeDeskButton("plus", text + " +", {}, [this] { change(1); });
        _label->setFont({"", countFont});
    }
    void show(const std::optional<ToolPropertyValue>& value) override {
        _value = numberOf(value, property().usual);
        const std::string text = std::to_string(std::lround(_value));
        if (_label->text() != text) _label->setText(text);
        _label->setTextColor(gfx::makeColor(Palette::current().text));
        _less->setEnabled(_value > property().least);
        _more->setEnabled(_value < property().most);
    }
    std::vector<EditorShell::Named> views() const override {
        return {{name() + ".less", _less}, {name(), _label}, {name() + ".more", _more}};
    }

private:
    void change(double direction) {
        const double step = property().step > 0 ? property().step : 1;
        choose(std::clamp(_value + direction * step, property().least, property().most));
    }

    std::shared_ptr<ui::Label> _label;
    std::shared_ptr<ui::DeskButton> _less;
    std::shared_ptr<ui::DeskButton> _more;
    double _value = 0;
};

// ---- choices

class SegmentProperty : public DeskProperty {
public:
    SegmentProperty(const ToolProperty& property, Chosen chosen)
        : DeskProperty(property, std::move(chosen)) {
        std::vector<ui::SegmentedControl::Segment> segments;
        for (const auto& choice : property.choices) {
            segments.push_back({.icon = iconOf(property, choice.name),
                                .title = {},
                                .tip = ui::hostText(choice.text, choice.english)});
        }
        _control = ui::SegmentedControl::make(segments);
        _control->setAccessibilityLabel(ui::hostText(property.text, property.english));
        _control->setHandler([this](std::size_t index) {
            choose(std::string(this->property().choices[index].name));
        });
    }
    static bool suits(const ToolProperty& property) {
        constexpr std::size_t mostSegments = 4;
        return property.choices.size() <= mostSegments &&
               std::ranges::all_of(property.choices, [&](const ToolProperty::Choice& choice) {
                   return !iconOf(property, choice.name).empty();
               });
    }
    void show(const std::optional<ToolPropertyValue>& value) override {
        const auto& choices = property().choices;
        const auto chosen = std::ranges::find(choices, textOf(value), &ToolProperty::Choice::name);
        _control->setChosen(chosen == choices.end()
                                ? ui::SegmentedControl::none
                                : static_cast<std::size_t>(chosen - choices.begin()));
    }
    std::vector<EditorShell::Named> views() const override {
        std::vector<EditorShell::Named> all{{name(), _control}};
        for (std::size_t i = 0; i < property().choices.size(); ++i)
            all.push_back(
                {name() + "." + std::string(property().choices[i].name), _control->buttons()[i]});
        return all;
    }

private:
    std::shared_ptr<ui::SegmentedControl> _control;
};

class MenuProperty : public DeskProperty {
public:
    MenuProperty(const ToolProperty& property, Chosen chosen)
        : DeskProperty(property, std::move(chosen)) {
        _button = ui::DeskButton::make(
            {}, ui::hostText(property.choices.front().text, property.choices.front().english));
        _button->setOpens(true);
        _button->setTip(ui::hostText(property.text, property.english));
        _button->setHandler([this] { open(); });
    }
    void show(const std::optional<ToolPropertyValue>& value) override {
        _value = textOf(value);
        const auto& choices = property().choices;
        const auto chosen = std::ranges::find(choices, _value, &ToolProperty::Choice::name);
        std::string title = _value;
        if (chosen != choices.end()) title = ui::hostText(chosen->text, chosen->english);
        if (title.empty()) title = ui::hostText(choices.front().text, choices.front().english);
        if (_button->title() != title) _button->setTitle(title);
        _button->sizeToFit();
    }
    std::vector<EditorShell::Named> views() const override { return {{name(), _button}}; }

private:
    void open() const {
        std::vector<ui::MenuItem> items;
        for (const auto& choice : property().choices) {
            if (choice.isNamedOnly) continue;
            items.push_back(
                itemFor(ui::hostText(choice.text, choice.english), std::string(choice.name)));
        }
        if (!property().samples.empty()) {
            items.push_back(ui::MenuItem::separator());
            items.push_back({.text = deskText("更多"), .items = samples()});
        }
        ui::Menu::show(*_button, std::move(items));
    }

    ui::MenuItem itemFor(const std::string& text, const std::string& value) const {
        return {.text = text,
                .run =
                    [this, weakSelf = weak_from_this(), value] {
                        if (const auto alive = weakSelf.lock()) choose(value);
                    },
                .isChecked = value == _value};
    }

    std::vector<ui::MenuItem> samples() const {
        std::vector<ui::MenuItem> items;
        for (const std::string_view sample : property().samples)
            items.push_back(itemFor(std::string(sample), std::string(sample)));
        items.push_back(ui::MenuItem::separator());
        items.push_back({.text = deskText("输入文字"), .run = [this, weakSelf = weak_from_this()] {
                             if (const auto alive = weakSelf.lock()) askForText();
                         }});
        return items;
    }

    void askForText() const {
        ui::TextPrompt::show(*_button, ui::hostText(property().text, property().english),
                             [this, weakSelf = weak_from_this()](const std::string& text) {
                                 if (const auto alive = weakSelf.lock()) choose(text);
                             });
    }

    std::shared_ptr<ui::DeskButton> _button;
    std::string _value;
};

class SwitchProperty : public DeskProperty {
public:
    SwitchProperty(const ToolProperty& property, Chosen chosen)
        : DeskProperty(property, std::move(chosen)) {
        _button = makeDeskButton(hasIcon(name()) ? name() : std::string(),
                                 ui::hostText(property.text, property.english), {},
                                 [this] { choose(_button->isSelected() ? 0.0 : 1.0); });
    }
    void show(const std::optional<ToolPropertyValue>& value) override {
        _button->setSelected(numberOf(value, property().usual) != 0);
    }
    std::vector<EditorShell::Named> views() const override { return {{name(), _button}}; }

private:
    std::shared_ptr<ui::DeskButton> _button;
};

// ---- colours

class ColorProperty : public DeskProperty {
public:
    ColorProperty(const ToolProperty& property, Chosen chosen, std::weak_ptr<ui::View> canvas)
        : DeskProperty(property, std::move(chosen)), _canvas(std::move(canvas)) {
        _button = ui::DeskButton::make("nofill");
        _button->setOpens(true);
        _button->setTip(ui::hostText(property.text, property.english));
        _button->setHandler([this] { open(); });
    }
    void show(const std::optional<ToolPropertyValue>& value) override {
        const auto color = gfx::Color::fromHex(textOf(value));
        if (color != _button->swatch()) _button->setSwatch(color);
        _button->sizeToFit();
    }
    std::vector<EditorShell::Named> views() const override { return {{name(), _button}}; }

private:
    void open() const {
        ui::ColorPicker::show(*_button,
                              {.color = _button->swatch().value_or(gfx::Color{1, 1, 1, 1}),
                               .hasAlpha = true,
                               .offersNone = true,
                               .source = _canvas},
                              [this, weakSelf = weak_from_this()](
                                  const std::optional<gfx::Color>& color, bool isFinal) {
                                  const auto alive = weakSelf.lock();
                                  if (alive) choose(color ? color->hex() : std::string(), isFinal);
                              });
    }

    std::weak_ptr<ui::View> _canvas;
    std::shared_ptr<ui::DeskButton> _button;
};

}  // namespace

std::shared_ptr<DeskProperty> DeskProperty::make(const ToolProperty& property, const Chosen& chosen,
                                                 const std::weak_ptr<ui::View>& canvas) {
    if (property.isHidden) return nullptr;
    switch (property.type) {
        case ToolProperty::Type::Number: {
            const double steps =
                property.step > 0 ? (property.most - property.least) / property.step : mostSteps;
            if (steps > mostSteps) return std::make_shared<CountedProperty>(property, chosen);
            return std::make_shared<SliderProperty>(property, chosen);
        }
        case ToolProperty::Type::Switch:
            return std::make_shared<SwitchProperty>(property, chosen);
        case ToolProperty::Type::Color:
            return std::make_shared<ColorProperty>(property, chosen, canvas);
        case ToolProperty::Type::Choice:
        case ToolProperty::Type::Text:
            if (property.choices.empty()) return nullptr;
            if (SegmentProperty::suits(property))
                return std::make_shared<SegmentProperty>(property, chosen);
            return std::make_shared<MenuProperty>(property, chosen);
    }
    return nullptr;
}

}  // namespace kalim
