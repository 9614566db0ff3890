#pragma once

#include "kalimkit/host/headless/ScenarioValues.h"
#include "kalimkit/json/JsonValue.h"
#include "kalimkit/ui/gesture/PanGestureRecognizer.h"
#include "kalimkit/ui/gesture/PinchGestureRecognizer.h"
#include "kalimkit/ui/gesture/RotationGestureRecognizer.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// A view and the recognisers through which fingers turn, zoom and move what it shows.
struct GestureTarget {
    const ui::View& view;
    ui::RotationGestureRecognizer& rotation;
    ui::PinchGestureRecognizer& pinch;
    ui::PanGestureRecognizer& pan;
};

// A step {"gesture":"rotation","state":"changed","value":0.5}: feeds one recogniser directly. The
// value is radians for a rotation, a factor for a pinch and [x,y] in view points for a pan, each
// since the gesture began; a pinch may have a focus "at" a view point.
Problem playGesture(const GestureTarget& target, const JsonValue& step);

}  // namespace kalim
