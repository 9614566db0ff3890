#pragma once

#include <optional>
#include <span>

#include "kalimkit/gfx/Point.h"
#include "kalimkit/tool/ToolProperty.h"

// Included first by what is compiled apart from the rest of the module: a table of virtual
// functions names those whose types the compiler has not seen whole by another signature, and
// calling them would fail.
static_assert(sizeof(std::span<const kalim::gfx::Point>) > 0 &&
              sizeof(std::optional<kalim::ToolPropertyValue>) > 0);
