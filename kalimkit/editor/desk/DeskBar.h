#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "kalimkit/editor/screen/EditorOffer.h"
#include "kalimkit/editor/screen/EditorShell.h"
#include "kalimkit/ui/desk/DeskButton.h"
#include "kalimkit/ui/view/View.h"

namespace kalim {

// A bar of the desk: a ground with a line at the edge towards the canvas, which takes all touches
// on it, and controls in it that have names.
class DeskBar : public ui::View {
public:
    enum class Edge { Bottom, Right, Top };

    // Takes the colours that are in force now.
    virtual void applyColors();
    // With the name of the bar in front, as "pens.arrow".
    void addNames(const std::string& shell, std::vector<EditorShell::Named>& names) const;

protected:
    DeskBar(std::string name, Edge edge) : _name(std::move(name)), _edge(edge) {}
    void begin(const std::string& label);
    // For a menu, which may outlive the bar.
    std::function<void()> whileThere(std::function<void()> step) const;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;
    // Its views by their names; null ones are passed over.
    virtual std::vector<EditorShell::Named> views() const = 0;

private:
    std::string _name;
    Edge _edge;
};

// The user's text for one of the editor's own.
std::string deskText(std::string_view text);

// What the phone's confirm button is called here; a host's own word for it stays.
std::string deskConfirmTitle(const std::string& title);

// A button with an icon (drawDeskIcon), or with the text where the name is empty. The text and the
// key that does the same are its tip.
std::shared_ptr<ui::DeskButton> makeDeskButton(const std::string& icon, const std::string& text,
                                               const std::string& key,
                                               std::function<void()> handler);

// That of a host.
std::shared_ptr<ui::DeskButton> makeDeskButton(const HostButton& button);

}  // namespace kalim
