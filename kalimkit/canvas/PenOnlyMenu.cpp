#include "kalimkit/canvas/PenOnlyMenu.h"

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/tool/QVGeometry.h"
#include "kalimkit/ui/control/AlertView.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim {

namespace {

// A finger rests that stays so near for so long, window points and seconds.
constexpr double restReach = 10;
constexpr double restTime = 0.7;

bool isDown(const ui::Touch& finger) {
    return finger.phase() != ui::TouchPhase::Ended && finger.phase() != ui::TouchPhase::Cancelled;
}

}  // namespace

ui::MenuItem penOnlyItem() {
    const ui::Environment& environment = ui::Environment::current();
    const bool isOn = environment.userDefault(MDrawView::penOnlySetting).value_or(true);
    return {
        .text = environment.localizedString("只用笔画"),
        .run =
            [isOn] { ui::Environment::current().setUserDefault(MDrawView::penOnlySetting, !isOn); },
        .isChecked = isOn};
}

void offerPenOnly(MDrawView& canvas, const ui::TouchRef& finger) {
    ui::Environment::current().runLoop().after(
        restTime, [weakCanvas = canvas.weak_from_this(), weakFinger = std::weak_ptr(finger),
                   from = finger->locationIn(nullptr)] {
            const auto there = weakCanvas.lock();
            const auto held = weakFinger.lock();
            ui::Window* const window = there ? there->window() : nullptr;
            if (!window || !held || !isDown(*held) || ui::AlertView::topmostIn(*window)) return;
            const gfx::Point place = held->locationIn(nullptr);
            const bool isAlone = window->activeTouches().size() == 1;
            if (isAlone && QVPointDistance(from, place) <= restReach)
                ui::Menu::showAt(*window, place, {penOnlyItem()});
        });
}

}  // namespace kalim
