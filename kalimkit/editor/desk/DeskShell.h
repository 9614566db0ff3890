#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "kalimkit/editor/screen/EditorShell.h"
#include "kalimkit/gfx/Export.h"
#include "kalimkit/gfx/Point.h"

namespace kalim {

class EditorKeys;
class CanvasPointer;
class EditorRemote;
class TesselViewController;

// The editor's shell for wide screens: all pens at the left, what they draw like across the top,
// what is told of the picture across the bottom.
class KALIM_API DeskShell : public EditorShell {
public:
    // All that it works with; they outlive it.
    struct Editor {
        TesselViewController& screen;
        EditorRemote& remote;
        EditorKeys& keys;
        CanvasPointer& pointer;
    };
    static std::shared_ptr<DeskShell> make(const Editor& editor);
    ~DeskShell() override;

    const std::shared_ptr<ui::View>& view() const override;
    ui::EdgeInsets coveredEdges(gfx::Size size) const override;
    gfx::ColorRef groundColor() const override;
    void editorDidChange() override;
    void showNote(const std::string& text) override;
    void showContextMenu(gfx::Point place) override;
    KLMActionsheetView::Layouter questionLayouter() const override;
    std::string confirmTitle(const std::string& title) const override;
    // It never takes more than a third of the top bar.
    void setHostRoom(double width) override;
    gfx::Rect hostRoom() const override;
    gfx::ColorRef textColor() const override;
    std::vector<Named> namedViews() const override;

private:
    class Desk;

    explicit DeskShell(std::shared_ptr<Desk> desk);

    std::shared_ptr<Desk> _desk;
    std::shared_ptr<ui::View> _view;
};

}  // namespace kalim
