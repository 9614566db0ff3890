#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "kalimkit/gfx/Context.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/theme/Palette.h"
#include "kalimkit/ui/control/Control.h"

namespace kalim::ui {

// What controls of a desk have in common: they show a pointer that hovers, can have the keys'
// focus, and bear a tip that is shown where the pointer rests on them. They are drawn in the
// palette that is in force at that moment. Lengths are points.
class KALIM_API DeskControl : public Control {
public:
    static constexpr double cornerRadius = 6;

    // ---- what is said about it
    // What it is for, and the key that does the same, by its name in EditorKeys; either may be
    // empty. Without a label of its own the tip's text is what assistive technologies are told.
    void setTip(std::string text, std::string key = {});
    const std::string& tip() const { return _tip; }
    const std::string& tipKey() const { return _tipKey; }
    std::string accessibilityLabel() const override;

    // ---- pointer and keys
    bool isHovered() const { return _hovered; }
    void pointerEntered(gfx::Point p) override;
    void pointerExited() override;
    // The overlay gives the focus and takes it; a control that is not enabled never has it.
    bool isKeyFocused() const { return _keyFocused; }
    void setKeyFocused(bool focused);
    virtual bool canHaveKeyFocus() const { return isEnabled(); }
    // A key while it has the focus; whether it was of use. Enter and space do what a tap does.
    virtual bool handleKey(std::string_view key, bool isRepeated);
    // As a tap does it; nothing while it is not enabled.
    virtual void activate();

protected:
    DeskControl() = default;
    // For what is dragged: nothing above it scrolls meanwhile.
    bool admitsGestureButPan(const GestureRecognizer& recognizer) const;
    // The colour of what lies on its ground.
    gfx::Color contentColor(const Palette& palette) const;
    // The ground that its state asks for, and the ring of the focus.
    void drawGround(gfx::Context& context, const Palette& palette) const;
    void drawFocus(gfx::Context& context, const Palette& palette, double radius) const;

private:
    std::string _tip;
    std::string _tipKey;
    bool _hovered = false;
    bool _keyFocused = false;
};

}  // namespace kalim::ui
