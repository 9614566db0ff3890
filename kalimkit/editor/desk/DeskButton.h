#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kalimkit/gfx/Export.h"
#include "kalimkit/theme/Palette.h"
#include "kalimkit/ui/control/Button.h"

namespace kalim {

// A button of the desk's bars: a picture or a title on the bar, which lies on a ground of its own
// while the pointer is over it, while it is pressed, and while what it stands for is in force.
class DeskButton : public ui::Button {
public:
    // The icon is a desk's (drawDeskIcon), or a picture of the editor's. The text is said instead
    // of it, and is the title where there is no icon of the name.
    static std::shared_ptr<DeskButton> make(const std::string& icon, const std::string& text,
                                            std::function<void()> action);
    static std::shared_ptr<DeskButton> makeTitled(const std::string& title,
                                                  std::function<void()> action);

    // Stands out, as the one that most people want in the end.
    void setProminent(bool isProminent);
    // Takes the colours that are in force now.
    void applyColors();
    // With a margin beside its title.
    double wantedWidth() const;

    void pointerEntered(gfx::Point p) override;
    void pointerExited() override;

protected:
    DeskButton() = default;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    gfx::Color ground(const Palette& colors) const;
    gfx::Color content(const Palette& colors) const;
    void drawIcon(gfx::Context& context, const gfx::Color& color) const;

    std::string _icon;
    // Of the editor's, where there is no desk's icon of the name.
    gfx::ImageRef _picture;
    bool _isProminent = false;
    bool _isHovered = false;
};

}  // namespace kalim
