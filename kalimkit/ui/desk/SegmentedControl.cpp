#include "kalimkit/ui/desk/SegmentedControl.h"

#include <algorithm>

#include "kalimkit/gfx/RoundedRect.h"

namespace kalim::ui {

std::shared_ptr<SegmentedControl> SegmentedControl::make(const std::vector<Segment>& segments) {
    const std::shared_ptr<SegmentedControl> control(new SegmentedControl);
    control->init({});
    control->setAccessibilityRole(AccessibilityRole::Group);
    double x = 0;
    for (std::size_t i = 0; i < segments.size(); ++i) {
        const auto button = DeskButton::make(segments[i].icon, segments[i].title);
        button->setTip(segments[i].tip);
        button->setAccessibilityRole(AccessibilityRole::RadioButton);
        // It owns its buttons.
        button->setHandler([self = control.get(), i] { self->choose(i); });
        button->setFrame({{x, 0}, button->frame().size});
        x += button->frame().size.width;
        control->addSubview(button);
        control->_buttons.push_back(button);
    }
    control->setFrame({0, 0, x, DeskButton::side});
    return control;
}

void SegmentedControl::setChosen(std::size_t index) {
    _chosen = index < _buttons.size() ? index : none;
    for (std::size_t i = 0; i < _buttons.size(); ++i)
        _buttons[i]->setSelected(i == _chosen);
}

void SegmentedControl::setEnabled(bool enabled) {
    for (const auto& button : _buttons)
        button->setEnabled(enabled);
}

void SegmentedControl::choose(std::size_t index) {
    const auto alive = shared_from_this();
    setChosen(index);
    if (const Handler handler = _handler) handler(index);
}

void SegmentedControl::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    context.setStrokeColor(Palette::current().separator);
    context.setLineWidth(1);
    context.addPath(gfx::roundedRect(bounds().inset(0.5, 0.5), DeskControl::cornerRadius + 1));
    context.stroke();
}

}  // namespace kalim::ui
