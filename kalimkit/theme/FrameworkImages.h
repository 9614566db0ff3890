#pragma once

#include <string>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Image.h"

namespace kalim {

// The editor's own pictures, which are part of the library: the names are those of the files in
// kalimkit/resources, without their suffix.

// The picture at the screen's scale, the same object each time while the environment stays; null
// for a name that there is none of.
KALIM_API gfx::ImageRef imageNamedForFramework(const std::string& name);

// The name that a picture was found by, also of a tinted or faded copy of it; empty for any other.
KALIM_API std::string frameworkImageName(const gfx::ImageRef& image);

}  // namespace kalim
