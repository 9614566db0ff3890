#pragma once

#include <cstddef>
#include <string_view>

#include "kalimkit/gfx/Device.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::gfx {

// How many characters, as a reader counts them, a UTF-8 text has.
KALIM_API std::size_t graphemeCount(Device& device, std::string_view text);

}  // namespace kalim::gfx
