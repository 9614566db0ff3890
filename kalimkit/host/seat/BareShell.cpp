#include "kalimkit/host/seat/BareShell.h"

namespace kalim {

BareShell::BareShell() : _view(ui::View::initWithFrame({})) {
    // Every touch is the canvas's.
    _view->setUserInteractionEnabled(false);
}

gfx::ColorRef BareShell::groundColor() const {
    return gfx::makeColor(0, 0, 0, 0);
}

}  // namespace kalim
