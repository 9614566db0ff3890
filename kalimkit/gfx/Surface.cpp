#include "kalimkit/gfx/Surface.h"

namespace kalim::gfx {

Surface::~Surface() = default;

}  // namespace kalim::gfx
