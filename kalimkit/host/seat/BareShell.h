#pragma once

#include <memory>
#include <string>
#include <vector>

#include "kalimkit/editor/screen/EditorShell.h"

namespace kalim {

// No bars at all: the canvas has all the room, with nothing behind the picture, and the host has
// bars of its own around it.
class BareShell : public EditorShell {
public:
    BareShell();

    const std::shared_ptr<ui::View>& view() const override { return _view; }
    ui::EdgeInsets coveredEdges(gfx::Size /*size*/) const override { return {}; }
    gfx::ColorRef groundColor() const override;
    void editorDidChange() override {}
    void showNote(const std::string& /*text*/) override {}
    void showContextMenu(gfx::Point /*place*/) override {}
    bool opensMenus() const override { return false; }
    std::vector<Named> namedViews() const override { return {}; }

private:
    std::shared_ptr<ui::View> _view;
};

}  // namespace kalim
