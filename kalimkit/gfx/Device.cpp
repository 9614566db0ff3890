#include "kalimkit/gfx/Device.h"

namespace kalim::gfx {

Device::~Device() = default;

}  // namespace kalim::gfx
