#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "kalimkit/gfx/Image.h"
#include "kalimkit/ui/desk/ColorMath.h"
#include "kalimkit/ui/desk/DraggedControl.h"

namespace kalim::ui {

// What of a colour a field changes: saturation to the right and value upwards, or one of the others
// to the right.
enum class ColorPart { SaturationAndValue, Hue, Alpha };

// A field that a finger, a pointer or the arrow keys pick a part of a colour in. It tells the whole
// colour, the rest of it as it was set.
class KALIM_API ColorField : public DraggedControl<HueColor> {
public:
    static std::shared_ptr<ColorField> make(ColorPart part);

    const HueColor& color() const { return shown(); }
    void setColor(const HueColor& color) { show(color); }

    bool handleKey(std::string_view key, bool isRepeated) override;
    std::optional<Cursor> cursorAt(gfx::Point /*p*/) override { return Cursor::Cross; }

    std::string accessibilityValue() const override;
    AccessibilityRole accessibilityRole() const override { return AccessibilityRole::Slider; }

protected:
    explicit ColorField(ColorPart part) : _part(part) {}
    // The colour as it is while the field has no room.
    HueColor valueAt(gfx::Point p) const override;
    void drawRect(gfx::Context& context, const gfx::Rect& dirty) override;

private:
    // Each from 0, left and bottom, to 1; a strip has no second.
    gfx::Point shares() const;
    HueColor colorWith(gfx::Point shares) const;
    gfx::Rect room() const;
    gfx::ImageRef ground() const;

    ColorPart _part;
    // What is seen behind the knob, and the colour that it was made for.
    mutable gfx::ImageRef _ground;
    mutable gfx::Color _groundColor;
};

}  // namespace kalim::ui
