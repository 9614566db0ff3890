#include "kalimkit/ui/control/ButtonChoice.h"

#include <utility>

namespace kalim::ui {

void ButtonChoice::setButtons(std::vector<std::shared_ptr<Button>> buttons, std::size_t first) {
    _buttons = std::move(buttons);
    _index = first;
}

void ButtonChoice::handleKey(std::string_view key, bool isRepeated) {
    if (_buttons.empty()) return;
    // The next one stands where one reads on.
    const bool isMirrored = _buttons[_index]->isMirrored();
    if (isMirrored && (key == "left" || key == "right")) key = key == "left" ? "right" : "left";
    if (key == "tab" || key == "right" || key == "down") {
        move(1);
    } else if (key == "shift+tab" || key == "left" || key == "up") {
        move(_buttons.size() - 1);
    } else if ((key == "enter" || key == "space") && !isRepeated) {
        const auto pressed = _buttons[_index];
        pressed->sendActions(ControlEvent::TouchUpInside);
    }
}

void ButtonChoice::move(std::size_t by) {
    _buttons[_index]->setSelected(false);
    _index = (_index + by) % _buttons.size();
    _buttons[_index]->setSelected(true);
}

}  // namespace kalim::ui
