#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim {

class KLMActionsheetView;

// Hears what was chosen on an action sheet.
class KALIM_API KLMActionsheetViewDelegate {
public:
    virtual ~KLMActionsheetViewDelegate() = default;

    // When the sheet has slid away: 0 for the action or no choice, 1 for the cancel button.
    virtual void modalAlertPressedWithButtonIndex(KLMActionsheetView& /*sheet*/, int /*index*/) {}
};

}  // namespace kalim
