#pragma once

namespace kalim::ui {

enum class TextAlignment { Left = 0, Center = 1, Right = 2 };

}  // namespace kalim::ui
