#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/Touch.h"

namespace kalim::ui {

// Takes touches. What it does not use goes to the next responder: the superview, and after the
// topmost view its window.
class KALIM_API Responder {
public:
    virtual ~Responder();

    // The end of the chain has null.
    virtual Responder* nextResponder() const { return nullptr; }

    // The defaults pass the event on.
    virtual void touchesBegan(const TouchEvent& event);
    virtual void touchesMoved(const TouchEvent& event);
    virtual void touchesEnded(const TouchEvent& event);
    virtual void touchesCancelled(const TouchEvent& event);
};

}  // namespace kalim::ui
