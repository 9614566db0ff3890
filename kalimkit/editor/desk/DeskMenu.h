#pragma once

#include <vector>

#include "kalimkit/editor/desk/DeskShell.h"
#include "kalimkit/gfx/Point.h"
#include "kalimkit/ui/desk/Menu.h"

namespace kalim {

// What can be done at a place of the canvas, window points: with the shape that lies there, which
// becomes the selection unless it is part of that, or with the whole.
std::vector<ui::MenuItem> deskMenu(const DeskShell::Editor& editor, gfx::Point place);

}  // namespace kalim
