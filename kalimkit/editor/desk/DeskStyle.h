#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/editor/desk/DeskBar.h"
#include "kalimkit/editor/desk/DeskProperties.h"
#include "kalimkit/editor/desk/DeskReading.h"
#include "kalimkit/editor/desk/DeskScrollMark.h"
#include "kalimkit/ui/control/ScrollView.h"
#include "kalimkit/ui/desk/Slider.h"

namespace kalim {

class EditorRemote;
class MDrawView;
class TesselViewController;

// The desk's top bar, but for its right end: how the pen in hand draws, or how what is selected
// looks. What does not fit beside each other scrolls.
class DeskStyle : public DeskBar, public ui::ScrollViewDelegate {
public:
    // Both outlive the bar.
    static std::shared_ptr<DeskStyle> make(TesselViewController& editor, EditorRemote& remote);

    void show(const DeskReading& reading);
    void scrollViewDidScroll(ui::ScrollView& view) override;

protected:
    void layoutSubviews() override;
    std::vector<EditorShell::Named> views() const override;

private:
    DeskStyle() : DeskBar("style", Edge::Bottom) {}
    void addColors();
    void addWidth();
    void addHiding();
    void openColors();
    void openHidingStyles();
    void chooseColor(const gfx::Color& color, bool isFinal);
    void chooseWidth(double width, bool isFinal);
    void chooseProperty(const std::string& name, const ToolPropertyValue& value, bool isFinal);
    // A choice that is not final is only shown on what is selected.
    struct Choice {
        ToolPropertyValue value;
        // What the selection has while nothing is being chosen.
        ToolPropertyValue before;
        std::function<void(MDrawView& canvas)> show;
        std::function<void()> take;
    };
    void choose(const Choice& choice, bool isFinal);
    bool isPropertyHeld() const;
    void makeProperties(const std::vector<const ToolProperty*>& wanted);
    void showProperties(const DeskReading& reading);
    double arrange(double height, bool showsSwatches);

    TesselViewController* _editor = nullptr;
    EditorRemote* _remote = nullptr;
    // What it shows now.
    DeskReading _reading;
    // What was there when the choice under way began.
    std::optional<ToolPropertyValue> _before;
    std::shared_ptr<ui::ScrollView> _scroll;
    std::vector<std::shared_ptr<DeskScrollMark>> _marks;
    std::vector<gfx::ColorRef> _offered;
    std::vector<std::shared_ptr<ui::DeskButton>> _swatches;
    std::shared_ptr<ui::DeskButton> _color;
    std::shared_ptr<ui::DeskButton> _widthIcon;
    std::shared_ptr<ui::Slider> _width;
    std::shared_ptr<ui::DeskButton> _hiding;
    // What the controls of properties are for.
    std::vector<const ToolProperty*> _shown;
    std::vector<std::shared_ptr<DeskProperty>> _properties;
};

}  // namespace kalim
