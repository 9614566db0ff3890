#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "kalimkit/gfx/Export.h"

namespace kalim {

// Which of a language's forms goes with so many things: "zero", "one", "two", "few", "many" or
// "other", by the cardinal rules of Unicode's CLDR (UTS 35). The language is such as "pl" or
// "pt-PT"; "other" for one without rules.
KALIM_API std::string pluralCategory(std::string_view language, std::int64_t count);

// Whether a number is in what a rule such as "v = 0 and i % 10 = 2..4" says. False for a rule that
// cannot be understood.
KALIM_API bool meetsPluralRule(std::string_view rule, std::int64_t count);

}  // namespace kalim
