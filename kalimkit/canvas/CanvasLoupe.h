#pragma once

#include <memory>

#include "kalimkit/gfx/Point.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

class CanvasHome;
class CanvasScreen;

// Shows what the canvas shows there, enlarged, above a fingertip at a view point: in `loupe`, or
// where that is null in a new one, which lies over the canvas and is answered. Null for a canvas
// that lies in no other view.
std::shared_ptr<ui::View> showCanvasLoupe(const CanvasHome& home, CanvasScreen& screen,
                                          const std::shared_ptr<ui::View>& loupe, gfx::Point place);

}  // namespace kalim
