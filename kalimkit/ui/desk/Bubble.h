#pragma once

#include <memory>
#include <string>

#include "kalimkit/ui/desk/Overlay.h"
#include "kalimkit/ui/view/View.h"

namespace kalim::ui {

// A dark plate with a text: a tip with the key that does the same, or a note with an icon. Takes no
// touches.
class Bubble : public View {
public:
    // Either of the last two may be empty.
    static std::shared_ptr<Bubble> make(std::string text, std::string key, std::string icon);
    // What it needs, points.
    gfx::Size fittingSize() const;

    std::string accessibilityLabel() const override { return _text; }

protected:
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    Bubble() = default;
    double keyWidth() const;

    std::string _text;
    std::string _key;
    std::string _icon;
};

}  // namespace kalim::ui
