#pragma once

#include "kalimkit/host/headless/EditorHost.h"
#include "kalimkit/json/JsonValue.h"

namespace kalim {

// What is to be known of the editor by looking at it: its views, the state of its tools, its
// pickers, its crop editor.
JsonValue::Object describeEditor(const TesselViewController& editor);

}  // namespace kalim
