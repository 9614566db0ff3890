#pragma once

#include "kalimkit/canvas/view/MDrawView.h"
#include "kalimkit/host/headless/JsonValue.h"
#include "kalimkit/host/headless/ScenarioValues.h"

namespace kalim {

// A step {"gesture":"rotation","state":"changed","value":0.5}: feeds one recogniser of the canvas
// directly. The value is radians for a rotation, a factor for a pinch and [x,y] in view points for
// a pan, each since the gesture began; a pinch may have a focus "at" a view point.
Problem playGesture(MDrawView& canvas, const JsonValue& step);

}  // namespace kalim
