#pragma once

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Path.h"

namespace kalim::gfx {

// The part of the path between two shares of its length, 0 to 1, its subpaths one after the other
// and closings drawn as lines; it is empty where the start is not below the end. Pieces of curves
// are curves again; lengths along them are measured on a fine polygon. A path that has no length is
// empty.
KALIM_API Path trimPath(const Path& path, double start, double end);

}  // namespace kalim::gfx
