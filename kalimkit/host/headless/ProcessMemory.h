#pragma once

#include <optional>

namespace kalim {

// Bytes, as the operating system counts them; nothing where it does not tell.
std::optional<double> residentMemory();
std::optional<double> freeMemory();

}  // namespace kalim
