#include "kalimkit/shapes/MeasureText.h"

#include <map>

#include "kalimkit/tool/FixedText.h"
#include "kalimkit/ui/environment/Environment.h"

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
    return fixedText(value, 2);
}

}  // namespace kalim
