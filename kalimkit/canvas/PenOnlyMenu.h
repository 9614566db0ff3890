#pragma once

#include "kalimkit/ui/desk/Menu.h"
#include "kalimkit/ui/view/Touch.h"

namespace kalim {

class MDrawView;

// The entry of a menu that switches MDrawView::penOnlySetting, checked while that is on.
ui::MenuItem penOnlyItem();

// Offers the entry where the finger is, once it has rested for a while on a canvas where it does
// nothing but look: there is no other place for it on a phone.
void offerPenOnly(MDrawView& canvas, const ui::TouchRef& finger);

}  // namespace kalim
