#include "kalimkit/canvas/PenOnlyMenu.h"

#include "kalimkit/canvas/MDrawView.h"
#include "kalimkit/canvas/MDrawViewDelegate.h"
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

void offerPenOnly(MDrawView& canvas, const std::shared_ptr<MDrawViewDelegate>& owner,
                  const ui::TouchRef& finger) {
    const auto offer = [weakCanvas = canvas.weak_from_this(), weakOwner = std::weak_ptr(owner),
                        weakFinger = std::weak_ptr(finger), from = finger->locationIn(nullptr)] {
        const auto there = weakCanvas.lock();
        const auto asked = weakOwner.lock();
        const auto held = weakFinger.lock();
        ui::Window* const window = there ? there->window() : nullptr;
        const bool isWanted = window && asked && asked->opensMenus() &&
                              !ui::AlertView::topmostIn(*window) &&
                              window->activeTouches().size() == 1;
        if (!isWanted || !held || !isDown(*held)) return;
        const gfx::Point place = held->locationIn(nullptr);
        if (QVPointDistance(from, place) <= restReach)
            ui::Menu::showAt(*window, place, {penOnlyItem()});
    };
    ui::Environment::current().runLoop().after(restTime, offer);
}

}  // namespace kalim
