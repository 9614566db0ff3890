#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Who decides what the buttons of the tool bar do.
class KALIM_API TesselTopToolDelegate {
public:
    virtual ~TesselTopToolDelegate() = default;

    // Before the message of the button itself, whichever it is.
    virtual void clickTool() = 0;
    // Asked first of all; while it says no, a tap on the close button does nothing more.
    virtual bool canContinueClose() = 0;
    virtual void clickToolClose() = 0;
    virtual void clickToolConfirm() = 0;
    virtual void clickToolMore() = 0;
    virtual void clickToolUndo() = 0;
    virtual void clickToolRedo() = 0;
    virtual void clickToolDone() = 0;
};

}  // namespace kalim
