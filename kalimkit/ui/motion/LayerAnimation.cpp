#include "kalimkit/ui/motion/LayerAnimation.h"

namespace kalim::ui {

LayerAnimation LayerAnimation::basic(const BasicAnimation& part) {
    LayerAnimation animation;
    animation.parts = {part};
    animation.duration = part.beginTime + part.duration * (part.autoreverses ? 2 : 1);
    animation.staysAtEnd = part.staysAtEnd;
    return animation;
}

}  // namespace kalim::ui
