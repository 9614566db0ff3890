#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/editor/sheet/KLMActionsheetViewDelegate.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/ui/control/Button.h"
#include "kalimkit/ui/control/ButtonChoice.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// Two buttons on a panel that slides up from the bottom of a dimmed screen. A button, or a tap
// beside the panel, slides it away; then the delegate hears of it and the sheet removes itself.
class KALIM_API KLMActionsheetView : public ui::View {
public:
    // Seconds that the panel takes to slide.
    static constexpr double slideDuration = 0.23;

    // The titles are shown as they are.
    static std::shared_ptr<KLMActionsheetView> initActionSheetCancelButtonTitleDelegate(
        const std::string& actionTitle, const std::string& cancelTitle,
        std::weak_ptr<KLMActionsheetViewDelegate> delegate);

    // Another answer, between the two, with an index of its own; before the sheet is shown.
    void addAnswer(const std::string& title, int index);

    // ---- showing
    // In the key window; ignored while there is none.
    void showAlert();
    // Over the whole view, which holds the sheet until it goes.
    void showAlert(ui::View& view);
    // The panel slides up, and away. Away tells the delegate the index; a second call while it
    // slides is ignored.
    void animateOn();
    void animateOff();

    // Whoever has another place for the panel, and its buttons in it, lays them out instead, also
    // within the animation that brings or takes them; null for none.
    using Layouter = std::function<void(const KLMActionsheetView& sheet, bool isUp)>;
    void setLayouter(Layouter layouter);

    // ---- keys. They choose among the buttons, see ui::ButtonChoice, beginning with the lowest,
    // the action; escape is as a tap beside the panel.
    void handleKey(std::string_view key, bool isRepeated = false);

    // ---- touches. It is modal from the moment it is shown until it has gone: what lands on it
    // while it slides goes nowhere.
    std::shared_ptr<ui::View> hitTest(gfx::Point p) override;
    void touchesBegan(const ui::TouchEvent& /*event*/) override {}
    void touchesMoved(const ui::TouchEvent& /*event*/) override {}
    void touchesEnded(const ui::TouchEvent& /*event*/) override {}
    void touchesCancelled(const ui::TouchEvent& /*event*/) override {}
    bool admitsGesture(const ui::GestureRecognizer& recognizer) const override;

    // ---- properties
    // From top to bottom: cancel, what was added, then action.
    const std::vector<std::shared_ptr<ui::Button>>& buttons() const { return _buttons; }
    // By index: 1 is cancel, 0 action. Null for one that there is not.
    std::shared_ptr<ui::Button> buttonWithTag(int tag) const;
    // The tag of the pressed button; 0 before one is.
    int buttonIndex() const { return _buttonIndex; }
    const std::shared_ptr<ui::View>& sheetPanel() const { return _sheetPanel; }
    // Whether the screen is a tall phone's. The room below the lowest button is the safe area's.
    bool isiPhoneX() const;
    // For whoever shows it, to tell sheets apart.
    std::int64_t tag() const { return _tag; }
    void setTag(std::int64_t tag) { _tag = tag; }

protected:
    explicit KLMActionsheetView(std::weak_ptr<KLMActionsheetViewDelegate> delegate);
    void init(const gfx::Rect& frame) override;
    void layoutSubviews() override;

private:
    void layoutPanel();
    void addBackdrop();
    void addButton(const std::string& title, int tag, const gfx::ColorRef& color,
                   std::size_t place);
    void press(int tag);
    void finish();

    std::weak_ptr<KLMActionsheetViewDelegate> _delegate;
    // Takes the taps beside the panel.
    std::shared_ptr<ui::View> _backdrop;
    std::shared_ptr<ui::View> _sheetPanel;
    std::vector<std::shared_ptr<ui::Button>> _buttons;
    std::vector<int> _tags;
    ui::ButtonChoice _choice;
    int _buttonIndex = 0;
    Layouter _layouter;
    bool _isUp = false;
    bool _isGoing = false;
    std::int64_t _tag = 0;
};

}  // namespace kalim
