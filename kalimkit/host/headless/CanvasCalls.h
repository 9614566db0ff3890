#pragma once

#include <optional>
#include <string>

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/json/JsonValue.h"

namespace kalim {

// What a call came to: a problem, or the returned value of an operation that returns one.
struct CallOutcome {
    Problem problem;
    std::optional<JsonValue> result;
};

// Calls an operation of the canvas by its C++ name. The arguments must agree with it in number and
// kind; else nothing is called.
CallOutcome callCanvas(MDrawView& canvas, const std::string& name,
                       const JsonValue::Array& arguments);

}  // namespace kalim
