#pragma once

#include <optional>
#include <string>

#include "kalimkit/codec/Bytes.h"
#include "kalimkit/gfx/Export.h"

namespace kalim::codec {

// The colour profile that a JPEG, PNG or WebP file carries; empty where it carries none that is
// whole.
Bytes colorProfile(ByteSpan file);

// What a profile calls itself, as the next.
std::optional<std::string> profileName(ByteSpan profile);

// What the profile of a file calls itself, as "Display P3"; nothing without one, and for one that
// is broken.
KALIM_API std::optional<std::string> colorProfileName(ByteSpan file);

}  // namespace kalim::codec
