#include "kalimkit/gfx/Device.h"

namespace kalim::gfx {

Device::~Device() = default;

TextDirections Device::directions(std::string_view /*paragraph*/, BaseDirection base) {
    return {base == BaseDirection::RightToLeft ? std::uint8_t{1} : std::uint8_t{0}, {}};
}

AddedFont Device::addFont(std::vector<std::uint8_t> /*file*/) {
    return {{}, "fonts cannot be added here"};
}

}  // namespace kalim::gfx
