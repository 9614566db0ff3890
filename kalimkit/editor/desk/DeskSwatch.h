#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kalimkit/gfx/Color.h"
#include "kalimkit/ui/control/Control.h"

namespace kalim {

// A round dot of the style bar that stands for a colour, or for a width in the colour of texts;
// with a ring around it while that is in force.
class DeskSwatch : public ui::Control {
public:
    static constexpr double side = 26;

    static std::shared_ptr<DeskSwatch> makeColor(const gfx::ColorRef& color,
                                                 std::function<void()> action);
    // The diameter is points.
    static std::shared_ptr<DeskSwatch> makeWidth(double diameter, const std::string& label,
                                                 std::function<void()> action);

    const gfx::ColorRef& color() const { return _color; }
    void setColor(const gfx::ColorRef& color);

    ui::AccessibilityRole accessibilityRole() const override;
    void pointerEntered(gfx::Point p) override;
    void pointerExited() override;

protected:
    DeskSwatch() = default;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    static std::shared_ptr<DeskSwatch> make(std::function<void()> action);

    // Null for a width.
    gfx::ColorRef _color;
    double _diameter = 18;
    bool _isHovered = false;
};

}  // namespace kalim
