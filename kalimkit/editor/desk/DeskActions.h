#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "kalimkit/editor/desk/DeskBar.h"
#include "kalimkit/editor/desk/DeskReading.h"

namespace kalim {

class EditorKeys;
class EditorRemote;
class TesselViewController;

// The right end of the desk's top bar: what is done with the drawing as a whole. Buttons of what
// the host does not do are not there.
class DeskActions : public DeskBar {
public:
    // All outlive the bar.
    static std::shared_ptr<DeskActions> make(TesselViewController& editor, EditorKeys& keys);

    void show(const DeskReading& reading);
    // All that it has to show needs so much.
    double wantedWidth() const;
    // Leaves so much free for the host before its buttons; 0 for nothing.
    void setHostRoom(double width);
    // Where that is, of the bar's own places.
    gfx::Rect hostRoom() const;

protected:
    void layoutSubviews() override;
    std::vector<EditorShell::Named> views() const override;

private:
    DeskActions() : DeskBar("actions", Edge::Bottom) {}
    void add(const std::string& name, const std::string& icon, const std::string& text,
             const std::string& key, std::function<void()> action);

    void add(const std::string& name, const std::shared_ptr<ui::DeskButton>& button);
    double hostSpan() const;

    std::vector<EditorShell::Named> _buttons;
    std::shared_ptr<ui::DeskButton> _undo;
    std::shared_ptr<ui::DeskButton> _redo;
    double _hostWidth = 0;
};

}  // namespace kalim
