#pragma once

#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// Lies over a canvas and holds the field of the text that is typed, in coordinates of its own. It
// takes no touches but those on the field.
class KALIM_API TypingView : public ui::View {
public:
    static std::shared_ptr<TypingView> initWithFrame(const gfx::Rect& frame);
    bool pointInside(gfx::Point p) const override;

protected:
    TypingView() = default;
};

}  // namespace kalim
