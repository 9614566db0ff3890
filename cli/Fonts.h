#pragma once

#include <optional>
#include <string>
#include <vector>

#include "kalimkit/gfx/Device.h"

namespace kalim::cli {

// Hands the fonts of these files to a device. Answers with nothing, or with what is wrong and with
// which of them.
std::optional<std::string> addFonts(gfx::Device& device, const std::vector<std::string>& files);

}  // namespace kalim::cli
