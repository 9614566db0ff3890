#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/host/headless/AccessibilityPrint.h"
#include "kalimkit/host/headless/ScenarioStage.h"
#include "kalimkit/json/JsonText.h"

namespace kalim {

Problem ScenarioPlayer::Stage::printAccessibility() {
    _seat.accessibility().update();
    _output(dumpJson(describeAccessibility(_seat.accessibility().nodes())));
    return std::nullopt;
}

Problem ScenarioPlayer::Stage::activate(const JsonValue& step) {
    std::string label;
    if (Problem problem = readAs(*step.find("activate"), "\"activate\"", label)) return problem;
    _seat.accessibility().update();
    std::vector<std::string_view> labels;
    int id = 0;
    int count = 0;
    for (const ui::AccessibilityNode& node : _seat.accessibility().nodes()) {
        labels.push_back(node.label);
        if (node.label != label) continue;
        id = node.id;
        ++count;
    }
    if (count == 0) {
        return "nothing is announced as " + shownName(label) + suggestion(label, labels);
    }
    if (count > 1) {
        return std::to_string(count) + " things are announced as " + shownName(label);
    }
    if (!_seat.accessibility().activate(id)) {
        return shownName(label) + " is disabled, or there is nothing that a tap does to it";
    }
    return std::nullopt;
}

}  // namespace kalim
