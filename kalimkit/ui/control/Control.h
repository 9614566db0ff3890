#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

enum class ControlEvent { TouchDown, TouchUpInside, TouchUpOutside, TouchCancel, ValueChanged };

// A view that turns a finger into events. It follows one finger: highlighted from landing on, while
// the finger is not farther than a grace from the bounds. A disabled control does nothing, but what
// lies below it does not get its touches either; and recognisers of the views above it do not see
// taps on a control.
class KALIM_API Control : public View {
public:
    using Action = std::function<void(Control&)>;
    // So many points around the bounds still count as inside for a finger that landed inside.
    static constexpr double grace = 70;

    static std::shared_ptr<Control> initWithFrame(const gfx::Rect& frame);

    // ---- events
    // Actions of an event run in the order they were added. An action may add and remove actions,
    // take the control away and let go of it: it is held until all have returned.
    void addAction(ControlEvent event, Action action);
    void removeActions(ControlEvent event);
    void sendActions(ControlEvent event);

    void touchesBegan(const TouchEvent& event) override;
    void touchesMoved(const TouchEvent& event) override;
    void touchesEnded(const TouchEvent& event) override;
    void touchesCancelled(const TouchEvent& event) override;
    bool admitsGesture(const GestureRecognizer& recognizer) const override;
    // A press does something.
    std::optional<Cursor> cursorAt(gfx::Point /*p*/) override {
        return _enabled ? Cursor::Hand : Cursor::Arrow;
    }

    // ---- state
    bool isEnabled() const { return _enabled; }
    // Disabling a control that follows a finger cancels that.
    void setEnabled(bool enabled);
    bool isHighlighted() const { return _highlighted; }
    void setHighlighted(bool highlighted);
    bool isSelected() const { return _selected; }
    void setSelected(bool selected);
    bool isAccessibilityEnabled() const override { return _enabled && isUserInteractionEnabled(); }
    bool isAccessibilitySelected() const override { return _selected; }
    // Whether it follows a finger.
    bool isTracking() const { return _tracking; }

protected:
    Control() = default;
    // After it was enabled, disabled, highlighted or selected, or the reverse. Draws it again.
    virtual void stateDidChange() { setNeedsDisplay(); }

private:
    void change(bool& state, bool value);
    void endTracking(ControlEvent event);
    bool isWithinGrace(const TouchEvent& event) const;

    std::vector<std::pair<ControlEvent, std::shared_ptr<const Action>>> _actions;
    bool _enabled = true;
    bool _highlighted = false;
    bool _selected = false;
    bool _tracking = false;
};

}  // namespace kalim::ui
