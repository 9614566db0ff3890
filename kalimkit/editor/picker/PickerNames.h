#pragma once

#include <cstdint>
#include <string>

#include "kalimkit/theme/TesselConfig.h"

namespace kalim {

// What the choices of the pickers are called in the user's language, for those who do not see them.
// Empty for a choice that there is no name for.
std::string penName(unsigned pen);
std::string sizeName(unsigned size);
// By its number, see HidingStyle.
std::string hidingStyleName(std::uint64_t drawType);
// Of what a dot stands for, by its type.
std::string choiceName(const TesselConfig& config);
// Names a row of such dots.
std::string kindName(unsigned type);

// Of what the dots of sizes choose while they stand for ways to hide.
std::string hidingName();

// Of the picture on a pen or shape dot, or on one of a way to hide, and of that on the pen button.
// Empty where there is none.
std::string dotIconName(const TesselConfig& config);
std::string penIconName(unsigned pen, unsigned size);

}  // namespace kalim
