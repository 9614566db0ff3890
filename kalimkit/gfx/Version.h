#pragma once

#include "kalimkit/gfx/Export.h"

// The version of the library that was linked or loaded. The names are plain C, so that a host finds
// them in a loaded library too.
extern "C" {

// It reads MAJOR.MINOR.PATCH and ends with a zero.
KALIM_API extern const unsigned char KalimKitDylibFrameworkVersionString[];

// MAJOR.MINOR read as a decimal fraction. Whoever compares versions takes the text: 0.10 is the
// same number as 0.1.
KALIM_API extern const double KalimKitDylibFrameworkVersionNumber;
}
