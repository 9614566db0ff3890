#pragma once

#include <memory>

#include "kalimkit/ui/desk/Menu.h"
#include "kalimkit/ui/view/Touch.h"

namespace kalim {

class MDrawView;
class MDrawViewDelegate;

// The entry of a menu that switches MDrawView::penOnlySetting, checked while that is on.
ui::MenuItem penOnlyItem();

// Offers the entry where the finger is, once it has rested for a while on a canvas where it does
// nothing but look, if the canvas's owner has menus: there is no other place for it on a phone.
void offerPenOnly(MDrawView& canvas, const std::shared_ptr<MDrawViewDelegate>& owner,
                  const ui::TouchRef& finger);

}  // namespace kalim
