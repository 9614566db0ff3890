#pragma once

#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim::gfx {

// What of a text from outside may stand in a text that is edited: valid UTF-8, bytes that are none
// having become replacement characters; CR, CR LF and the separators U+2028 and U+2029 as line
// feeds; of the other control characters only tabs.
KALIM_API std::string plainText(std::string_view typed);

// The part of a text without the spaces, tabs and line ends around it.
KALIM_API std::string_view trimmed(std::string_view text);

// Whether a text is empty or shows nothing: white space and characters without a width.
KALIM_API bool isBlank(std::string_view text);

}  // namespace kalim::gfx
