#pragma once

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

class TextView;

// Hears of what the user does in a text view; never of what the program does.
class KALIM_API TextViewDelegate {
public:
    virtual ~TextViewDelegate() = default;

    virtual void textViewDidBeginEditing(TextView& /*view*/) {}
    // The text has changed, composed text included.
    virtual void textViewDidChange(TextView& /*view*/) {}
    virtual void textViewDidEndEditing(TextView& /*view*/) {}
};

}  // namespace kalim::ui
