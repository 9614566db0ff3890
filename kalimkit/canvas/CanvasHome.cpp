#include "kalimkit/canvas/CanvasHome.h"

#include "kalimkit/canvas/CanvasScreen.h"

namespace kalim {

void CanvasHome::redisplay() {
    _screen.redisplay();
}

}  // namespace kalim
