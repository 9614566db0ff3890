#pragma once

#include <string>
#include <string_view>

namespace kalim::gfx {

// A run of one direction, so written that a device shapes it in that direction and no other. The
// format characters that settled it are gone: each has become a joiner, which shows as little.
std::string directedRun(std::string_view run, bool isRightToLeft);

}  // namespace kalim::gfx
