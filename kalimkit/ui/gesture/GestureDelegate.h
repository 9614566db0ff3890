#pragma once

#include <optional>

#include "kalimkit/gfx/Export.h"

namespace kalim::ui {

class GestureRecognizer;
class Touch;

// What a recogniser asks: which touches are its own, and what it may begin beside.
class KALIM_API GestureDelegate {
public:
    virtual ~GestureDelegate() = default;

    // Asked once of each touch that lands. The recogniser never learns of one that is refused.
    virtual bool shouldReceiveTouch(const GestureRecognizer& /*recognizer*/,
                                    const Touch& /*touch*/) {
        return true;
    }
    // Whether both may go on at once. No answer counts as no; a yes from the delegate of either
    // recogniser is enough.
    virtual std::optional<bool> shouldRecognizeSimultaneouslyWith(
        const GestureRecognizer& /*recognizer*/, const GestureRecognizer& /*other*/) {
        return std::nullopt;
    }
};

}  // namespace kalim::ui
