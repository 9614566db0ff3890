#pragma once

#include <functional>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Asks the user, in an alert, whether to go on with the drawing that a picture carries inside or to
// start from the picture.
KALIM_API void askToReopen(std::function<void(bool goesOn)> answer);

}  // namespace kalim
