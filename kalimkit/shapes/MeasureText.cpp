#include "kalimkit/shapes/MeasureText.h"

#include <cstdio>
#include <map>

#include "kalimkit/ui/loop/Environment.h"

namespace kalim {

namespace {

std::map<std::string, std::string>& keptLabels() {
    static std::map<std::string, std::string> labels;
    return labels;
}

}  // namespace

std::string measureLabel(const std::string& key) {
    const auto found = keptLabels().find(key);
    if (found != keptLabels().end()) return found->second;
    // Without an environment there is nothing to keep yet.
    if (!ui::Environment::hasCurrent()) return key;
    return keptLabels().emplace(key, ui::Environment::current().localizedString(key)).first->second;
}

void resetMeasureLabels() {
    keptLabels().clear();
}

std::string measureValue(double value) {
    // Long enough for the largest double in this format.
    char text[330];
    std::snprintf(text, sizeof text, "%0.2f", value);
    std::string result = text;
    // A host's locale may have put another sign, of one byte or more, before the decimals.
    constexpr const char* digits = "0123456789";
    const std::size_t signEnd = result.find_last_not_of(digits);
    const std::size_t signBegin = result.find_last_of(digits, signEnd);
    if (signBegin != std::string::npos) {
        result.replace(signBegin + 1, signEnd - signBegin, ".");
    }
    return result;
}

}  // namespace kalim
