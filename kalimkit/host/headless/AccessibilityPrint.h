#pragma once

#include <vector>

#include "kalimkit/json/JsonValue.h"
#include "kalimkit/ui/window/AccessibilityNode.h"

namespace kalim {

// Each node in order, with how many of the others it lies in.
JsonValue::Array describeAccessibility(const std::vector<ui::AccessibilityNode>& nodes);

}  // namespace kalim
