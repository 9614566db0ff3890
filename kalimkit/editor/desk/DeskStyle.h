#pragma once

#include <memory>
#include <vector>

#include "kalimkit/editor/desk/DeskBar.h"
#include "kalimkit/editor/desk/DeskReading.h"
#include "kalimkit/editor/desk/DeskSwatch.h"
#include "kalimkit/ui/control/ScrollView.h"

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
    void addColors(const TesselViewController& editor);
    void addWidths();

    EditorRemote* _remote = nullptr;
    std::shared_ptr<ui::ScrollView> _scroll;
    std::vector<std::shared_ptr<DeskSwatch>> _colors;
    std::vector<std::shared_ptr<DeskSwatch>> _widths;
};

}  // namespace kalim
