#pragma once

#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// What the system shows, in English, by the text that it shows otherwise; that one itself where
// there is no translation.
KALIM_API std::string englishText(const std::string& text);

// Whether a user of this locale, such as "de_DE.UTF-8" or "zh-CN", is better served by English
// texts: the language is named, and is not Chinese.
KALIM_API bool prefersEnglishTexts(std::string_view locale);

}  // namespace kalim
