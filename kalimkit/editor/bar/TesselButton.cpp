#include "kalimkit/editor/bar/TesselButton.h"

namespace kalim {

std::shared_ptr<TesselButton> TesselButton::initWithFrame(const gfx::Rect& frame) {
    struct Constructible : TesselButton {};
    const std::shared_ptr<TesselButton> button = std::make_shared<Constructible>();
    button->init(frame);
    return button;
}

bool TesselButton::pointInside(gfx::Point p) const {
    return bounds().inset(-touchMargin, -touchMargin).contains(p);
}

}  // namespace kalim
