#pragma once

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/json/JsonValue.h"

namespace kalim {

// What is to be known of a canvas by looking at it: its tools, its selection and its state.
JsonValue::Object describeCanvas(const MDrawView& canvas);

}  // namespace kalim
