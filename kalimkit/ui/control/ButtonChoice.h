#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/Button.h"

namespace kalim::ui {

// Which of a question's buttons the Enter key presses. Keys move it from one to the next, round and
// round; the first of them also shows it, as the button's selected state, which nothing else may
// use then.
class KALIM_API ButtonChoice {
public:
    // In the order in which the keys go through them, and the one to begin with.
    void setButtons(std::vector<std::shared_ptr<Button>> buttons, std::size_t first);

    // tab, shift+tab and the arrows move it; enter and space press the button, unless the key is
    // only held down. Other keys do nothing. Whoever owns this stays alive by other hands
    // meanwhile.
    void handleKey(std::string_view key, bool isRepeated);
    // Of the button that Enter would press.
    std::size_t index() const { return _index; }

private:
    void move(std::size_t by);

    std::vector<std::shared_ptr<Button>> _buttons;
    std::size_t _index = 0;
};

}  // namespace kalim::ui
