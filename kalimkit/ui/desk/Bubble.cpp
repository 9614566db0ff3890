#include "kalimkit/ui/desk/Bubble.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "kalimkit/gfx/Font.h"
#include "kalimkit/gfx/RoundedRect.h"
#include "kalimkit/theme/FrameworkImages.h"
#include "kalimkit/ui/control/AlignedText.h"
#include "kalimkit/ui/desk/KeyName.h"
#include "kalimkit/ui/desk/Popover.h"
#include "kalimkit/ui/environment/Environment.h"
#include "kalimkit/ui/window/Window.h"

namespace kalim::ui {

namespace {

// Points.
constexpr double inset = 9;
constexpr double height = 26;
constexpr double noteHeight = 36;
constexpr double iconSide = 20;
constexpr double gap = 8;
constexpr double radius = 6;
constexpr double tipDistance = 6;
constexpr double noteDistance = 20;
constexpr double windowInset = 4;
const gfx::Font tipFont{"", 12};

}  // namespace

// ---- the plate

std::shared_ptr<Bubble> Bubble::make(std::string text, std::string key, std::string icon) {
    const std::shared_ptr<Bubble> bubble(new Bubble);
    bubble->init({});
    bubble->_text = std::move(text);
    bubble->_key = std::move(key);
    bubble->_icon = std::move(icon);
    bubble->setUserInteractionEnabled(false);
    return bubble;
}

double Bubble::keyWidth() const {
    return _key.empty() ? 0 : std::ceil(AlignedText::sizeOf(_key, tipFont).width) + gap;
}

gfx::Size Bubble::fittingSize() const {
    double width = 2 * inset + std::ceil(AlignedText::sizeOf(_text, tipFont).width) + keyWidth();
    if (!_icon.empty()) width += iconSide + gap / 2;
    const bool isNote = accessibilityRole() == AccessibilityRole::Status;
    if (isNote) width += inset;
    return {width, isNote ? noteHeight : height};
}

void Bubble::drawRect(gfx::Context& context, const gfx::Rect& /*dirty*/) {
    const Palette palette = Palette::current();
    context.setFillColor(palette.tip);
    context.addPath(gfx::roundedRect(bounds(), radius));
    context.fill();
    gfx::Rect room = bounds().inset(inset, 0);
    if (accessibilityRole() == AccessibilityRole::Status) room = room.inset(inset / 2, 0);
    if (!_icon.empty()) {
        drawDeskIcon(context, _icon,
                     mirrored({room.minX(), room.midY() - iconSide / 2, iconSide, iconSide}),
                     palette.tipText);
        const double used = iconSide + gap / 2;
        room = {room.minX() + used, room.minY(), room.size.width - used, room.size.height};
    }
    const double own = std::max(room.size.width - keyWidth(), 0.0);
    context.setFillColor(palette.tipText);
    const gfx::Rect place(room.minX(), room.minY(), own, room.size.height);
    AlignedText(_text, tipFont, place.size, 1).drawIn(*this, context, place, TextAlignment::Left);
    if (_key.empty()) return;
    AlignedText(_key, tipFont, room.size, 1).drawIn(*this, context, room, TextAlignment::Right);
}

// ---- tips

void Overlay::pointerIsOn(const std::shared_ptr<View>& view) {
    std::shared_ptr<DeskControl> control;
    for (View* each = view.get(); each && !control; each = each->superview())
        control = std::dynamic_pointer_cast<DeskControl>(each->shared_from_this());
    if (control && control == _tipped.lock()) return;
    hideTip();
    if (!control || control->tip().empty()) return;
    _tipped = control;
    RunLoop& loop = Environment::current().runLoop();
    const bool isAgain = _tipEnd >= 0 && loop.now() - _tipEnd < tipAgain;
    _tipCall = loop.after(isAgain ? 0 : tipDelay, [this] {
        _tipCall = 0;
        if (const auto tipped = _tipped.lock()) showTip(tipped);
    });
}

void Overlay::hideTip() {
    RunLoop& loop = Environment::current().runLoop();
    loop.cancel(std::exchange(_tipCall, 0));
    _tipped.reset();
    if (!_tip) return;
    _tipEnd = loop.now();
    std::exchange(_tip, nullptr)->removeFromSuperview();
}

// Below the control, or above where there is no room; beside one in a bar at the window's side.
void Overlay::showTip(const std::shared_ptr<DeskControl>& control) {
    if (!control->window() || control->window() != window()) return;
    _tip = Bubble::make(control->tip(), keyName(control->tipKey()), {});
    // It says what the control's own label does.
    _tip->setAccessibilityHidden(true);
    const gfx::Rect anchor = mirrored(control->convertRectTo(control->bounds(), this));
    gfx::Size size = _tip->fittingSize();
    size.width = std::min(size.width, bounds().size.width - 2 * windowInset);
    const gfx::Rect room = bounds().inset(windowInset, windowInset);
    PopoverEdge edge = PopoverEdge::Below;
    constexpr double sideBar = 60;
    const bool isLow = anchor.maxY() + tipDistance + size.height > room.maxY();
    if (isLow) edge = PopoverEdge::Above;
    if (anchor.maxX() < sideBar && anchor.minY() > sideBar) edge = PopoverEdge::Right;
    _tip->setFrame(placeBeside(anchor, size, room, edge, tipDistance, true));
    if (superview()) superview()->bringSubviewToFront(*this);
    addSubview(_tip);
}

// ---- notes

void Overlay::tell(const std::string& text, const std::string& icon) {
    endNote(false);
    _note = Bubble::make(text, {}, icon);
    _note->setAccessibilityRole(AccessibilityRole::Status);
    View::performWithoutAnimation([&] {
        if (superview()) superview()->bringSubviewToFront(*this);
        addSubview(_note);
        placeNote();
        _note->setAlpha(0);
    });
    View::animate({.duration = noteFade, .allowsUserInteraction = true},
                  [&] { _note->setAlpha(1); });
    _noteCall = Environment::current().runLoop().after(noteFade + noteDuration, [this] {
        _noteCall = 0;
        endNote(true);
    });
}

void Overlay::placeNote() {
    if (!_note) return;
    const gfx::Size size = _note->fittingSize();
    const double width = std::min(size.width, bounds().size.width - 2 * windowInset);
    _note->setFrame({std::floor(bounds().midX() - width / 2),
                     bounds().maxY() - _bottomInset - noteDistance - size.height, width,
                     size.height});
}

void Overlay::endNote(bool animated) {
    Environment::current().runLoop().cancel(std::exchange(_noteCall, 0));
    if (!_note) return;
    const auto note = std::exchange(_note, nullptr);
    if (!animated) return note->removeFromSuperview();
    View::animate(
        {.duration = noteFade, .allowsUserInteraction = true}, [&] { note->setAlpha(0); },
        [note](bool /*finished*/) { note->removeFromSuperview(); });
}

}  // namespace kalim::ui
