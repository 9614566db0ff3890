#pragma once

#include <functional>
#include <memory>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

// Shows what lies under a fingertip, larger, above it, or beside it near the upper edge. It lies
// over a view and takes no touches; whoever shows it takes it away again.
class KALIM_API Loupe : public View {
public:
    // Draws what is under the finger in the coordinates of the view that the loupe lies over.
    using Drawing = std::function<void(gfx::Context& context)>;

    static std::shared_ptr<Loupe> showOver(View& view, Drawing draw);
    // The fingertip is there, in that view's coordinates; what is drawn may have changed as well.
    void moveTo(gfx::Point place);

protected:
    Loupe() = default;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    Drawing _draw;
    gfx::Point _place;
};

}  // namespace kalim::ui
