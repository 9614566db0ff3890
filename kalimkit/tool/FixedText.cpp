#include "kalimkit/tool/FixedText.h"

#include <cstdio>

namespace kalim {

std::string fixedText(double value, int decimals) {
    // The largest double has 309 digits before its point.
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    std::string result = text;
    // The locale's sign may be of one byte or more.
    constexpr const char* digits = "0123456789";
    const std::size_t signEnd = result.find_last_not_of(digits);
    const std::size_t signBegin = result.find_last_of(digits, signEnd);
    if (signEnd != std::string::npos && signBegin != std::string::npos) {
        result.replace(signBegin + 1, signEnd - signBegin, ".");
    }
    return result;
}

}  // namespace kalim
