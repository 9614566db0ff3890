#pragma once

#include <span>
#include <string_view>

#include "kalimkit/json/JsonText.h"

namespace kalim {

// A file of kalimkit/resources/texts: the language's name and the JSON in it. They are built into
// the library natively; a page fetches them, and has none here.
struct GivenTexts {
    std::string_view language;
    std::string_view json;
};
std::span<const GivenTexts> givenTexts();

// The cardinal rules of CLDR by languages, JSON; no languages where no texts are built in.
std::string_view givenPluralRules();

// For JSON of such files.
inline constexpr JsonLimits wideLimits{.depth = 4, .keys = 10000};

}  // namespace kalim
