#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"

namespace kalim::ui {

// Hears of the on-screen keyboard. Frames are in window points.
class KALIM_API KeyboardObserver {
public:
    virtual ~KeyboardObserver() = default;

    // Where it will be, also when one that is up changes its height.
    virtual void keyboardWillShow(const gfx::Rect& /*endFrame*/) {}
    // The frame keeps its last size and lies below the area that it covered.
    virtual void keyboardWillHide(const gfx::Rect& /*endFrame*/) {}
};

}  // namespace kalim::ui
