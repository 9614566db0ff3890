#include "kalimkit/canvas/CanvasLoupe.h"

#include "kalimkit/canvas/CanvasHome.h"
#include "kalimkit/canvas/CanvasScreen.h"
#include "kalimkit/ui/control/Loupe.h"

namespace kalim {

std::shared_ptr<ui::View> showCanvasLoupe(const CanvasHome& home, CanvasScreen& screen,
                                          const std::shared_ptr<ui::View>& loupe,
                                          gfx::Point place) {
    const ZoomedCanvasView& canvas = home.view();
    ui::View* const over = canvas.superview();
    if (!over) return nullptr;
    auto shown = std::static_pointer_cast<ui::Loupe>(loupe);
    if (!shown) {
        const auto draw = [weak = std::weak_ptr<CanvasScreen>(home.held(screen)),
                           view = canvas.weak_from_this()](gfx::Context& context) {
            const auto there = weak.lock();
            const auto shownView = view.lock();
            if (!there || !shownView) return;
            context.concat(shownView->toSuperview());
            there->drawAgain(context);
        };
        shown = ui::Loupe::showOver(*over, draw);
    }
    shown->moveTo(canvas.convertPointTo(place, over));
    return shown;
}

}  // namespace kalim
