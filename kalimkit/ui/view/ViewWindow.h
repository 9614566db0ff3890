#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Rect.h"
#include "kalimkit/ui/view/Responder.h"

namespace kalim::ui {

class View;
class Window;

// What views need of the window that they are shown in.
class KALIM_API ViewWindow : public Responder {
public:
    // Itself, for those who know windows.
    virtual Window* window() = 0;

    // A part of it, in window points, is to be drawn again.
    virtual void addDamage(const gfx::Rect& windowRect) = 0;
    // A view has to be laid out before the next display.
    virtual void requestLayout() = 0;

    // The view goes: the touches on it and on what is in it are cancelled.
    virtual void cancelTouchesIn(const View& subtree) = 0;
    // A gesture has begun apart from any event: the views in there are told that their touches are
    // cancelled, and those fingers are kept from them.
    virtual void takeTouches(const View& subtree) = 0;

    // The view that has the focus; null for none.
    virtual std::shared_ptr<View> firstResponder() const = 0;
    virtual void setFirstResponder(const std::shared_ptr<View>& view) = 0;
    // The view goes, or is hidden: nothing in it keeps the focus.
    virtual void endFocusIn(const View& subtree) = 0;
};

}  // namespace kalim::ui
