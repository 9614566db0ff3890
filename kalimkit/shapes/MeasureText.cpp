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

const std::string& measureLabel(const std::string& key) {
    const auto found = keptLabels().find(key);
    if (found != keptLabels().end()) return found->second;
    std::string text =
        ui::Environment::hasCurrent() ? ui::Environment::current().localizedString(key) : key;
    return keptLabels().emplace(key, std::move(text)).first->second;
}

void resetMeasureLabels() {
    keptLabels().clear();
}

std::string measureValue(double value) {
    // Long enough for the largest double in this format.
    char text[330];
    std::snprintf(text, sizeof text, "%0.2f", value);
    return text;
}

}  // namespace kalim
