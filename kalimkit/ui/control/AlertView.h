#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/control/ButtonChoice.h"
#include "kalimkit/ui/control/Label.h"
#include "kalimkit/ui/environment/Alert.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

class Window;

// An alert as a view: a dimmed window with a panel in its middle, above all else and the only thing
// that takes touches. It follows the size of the window. An alert that is shown while another is up
// goes on top of it. For hosts without alerts of their own.
class KALIM_API AlertView : public View {
public:
    // Points, less in a window that is narrower; seconds that it takes to appear and to go.
    static constexpr double panelWidth = 270;
    static constexpr double fadeDuration = 0.2;

    // The window holds it until it has gone. An alert without buttons gets one that confirms it.
    static std::shared_ptr<AlertView> show(Window& window, const Alert& alert);
    // The one that is to be answered first; null for none. One that is going does not count.
    static std::shared_ptr<AlertView> topmostIn(const Window& window);

    // Answers the alert as a tap on that button does, then goes. Ignored for a button that is not
    // there and for an alert that is answered already.
    void dismissWithButton(std::size_t button);
    // Keys choose among the buttons, see ButtonChoice. It begins with the first, which by custom is
    // the answer that loses nothing, and which is escape's.
    void handleKey(std::string_view key, bool isRepeated = false);
    bool isDismissed() const { return _isDismissed; }

    const Alert& alert() const { return _alert; }
    // They stand in the order of the alert's.
    const std::vector<std::shared_ptr<Button>>& buttons() const { return _buttons; }
    const std::shared_ptr<View>& panel() const { return _panel; }

    // A finger on the dimmed area does nothing.
    void touchesBegan(const TouchEvent& /*event*/) override {}
    void touchesMoved(const TouchEvent& /*event*/) override {}
    void touchesEnded(const TouchEvent& /*event*/) override {}
    void touchesCancelled(const TouchEvent& /*event*/) override {}
    bool admitsGesture(const GestureRecognizer& recognizer) const override;

protected:
    explicit AlertView(const Alert& alert);
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    std::shared_ptr<Label> addLabel(const std::string& text, const gfx::Font& font);
    void addButton(std::size_t index, const std::string& title);
    void layoutButtons(double top);
    bool isRow() const;
    double width() const;

    Alert _alert;
    bool _isDismissed = false;
    std::shared_ptr<View> _panel;
    // Null where the alert has none.
    std::shared_ptr<Label> _title;
    std::shared_ptr<Label> _message;
    std::vector<std::shared_ptr<Button>> _buttons;
    ButtonChoice _choice;
    // Each button has one: above it, or between it and the one before in a row.
    std::vector<std::shared_ptr<View>> _separators;
};

}  // namespace kalim::ui
