#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

class GestureRecognizer;

// What a recogniser asks before it begins beside another.
class KALIM_API GestureDelegate {
public:
    virtual ~GestureDelegate() = default;

    // Whether both may go on at once. No answer counts as no; a yes from the delegate of either
    // recogniser is enough.
    virtual std::optional<bool> shouldRecognizeSimultaneouslyWith(
        const GestureRecognizer& /*recognizer*/, const GestureRecognizer& /*other*/) {
        return std::nullopt;
    }
};

}  // namespace kalim::ui
