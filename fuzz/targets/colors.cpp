// Colours from hexadecimal notations, those of the interface and those of scenarios.

#include "fuzz/Fuzzing.h"
#include "kalimkit/theme/HexColor.h"

KALIM_FUZZ(colors, input) {
    using namespace kalim;
    const auto color = colorWithHexString(fuzz::textOf(input));
    fuzz::require(color != nullptr, "every text is a colour");
    fuzz::require(colorWithHexStringAlpha(fuzz::textOf(input), 0.5) != nullptr,
                  "every text is a colour");
}
