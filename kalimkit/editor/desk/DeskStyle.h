#pragma once

#include <memory>
#include <vector>

#include "kalimkit/editor/desk/DeskBar.h"
#include "kalimkit/editor/desk/DeskProperties.h"
#include "kalimkit/editor/desk/DeskReading.h"
#include "kalimkit/ui/control/ScrollView.h"
#include "kalimkit/ui/desk/Slider.h"

namespace kalim {

class EditorRemote;
class TesselViewController;

// The desk's top bar, but for its right end: how the pen in hand draws, or how what is selected
// looks. What does not fit beside each other scrolls.
class DeskStyle : public DeskBar {
public:
    // Both outlive the bar.
    static std::shared_ptr<DeskStyle> make(TesselViewController& editor, EditorRemote& remote);

    void show(const DeskReading& reading);

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
    void chooseWidth(double width, bool isFinal);
    void chooseProperty(const std::string& name, const ToolPropertyValue& value, bool isFinal);
    void showProperties(const DeskReading& reading);
    double arrange(double height, bool showsSwatches);

    TesselViewController* _editor = nullptr;
    EditorRemote* _remote = nullptr;
    // What it shows now.
    DeskReading _reading;
    std::shared_ptr<ui::ScrollView> _scroll;
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
