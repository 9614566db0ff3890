#pragma once

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/json/JsonValue.h"

namespace kalim {

// A step {"make":class,"points":[...]}: makes a tool of a class by points (canvas points) instead
// of touches and hands it to the canvas as a finished step. It takes the canvas's colour, width and
// style unless the step has a "color", "lineWidth" or "drawType". Texts have a "text".
Problem makeTool(MDrawView& canvas, const JsonValue& step);

}  // namespace kalim
