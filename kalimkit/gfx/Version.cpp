#include "kalimkit/gfx/Version.h"

// The build hands in the project's version, once as text and once as a number.
const unsigned char KalimKitDylibFrameworkVersionString[] = KALIM_VERSION;
const double KalimKitDylibFrameworkVersionNumber = KALIM_VERSION_NUMBER;
