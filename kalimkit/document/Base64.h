#pragma once

// It has moved; hosts find it here as well.
#include "kalimkit/json/Base64.h"
